// SPDX-License-Identifier: MIT
#include "svgview/WatchedFile.h"

#include <sys/stat.h>
#include <utility>

WatchedFile::WatchedFile(std::string name) : name_(std::move(name))
{
    accept();
}

void WatchedFile::accept()
{
    known_ = seen_ = look();
}

bool WatchedFile::hasChanged()
{
    const Stamp now = look();
    const Stamp before = std::exchange(seen_, now);
    return now.node != 0 && now == before && !(now == known_);
}

bool WatchedFile::Stamp::operator==(const Stamp& other) const
{
    return device == other.device && node == other.node && size == other.size &&
           seconds == other.seconds && nanoseconds == other.nanoseconds;
}

WatchedFile::Stamp WatchedFile::look() const
{
    struct stat status = {};
    if (stat(name_.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}
