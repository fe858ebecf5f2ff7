// SPDX-License-Identifier: MIT
#include "svg/document/Resources.h"

#include "svg/values/TextScanner.h"
#include "util/Base64.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <vector>
#include <zlib.h>

namespace KAVO {
namespace Svg {

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool isRelativeFile(const std::string& reference)
{
    return !reference.empty() && reference[0] != '/' && reference.find(':') == reference.npos;
}

// References are URIs: a byte may be written as % and two hexadecimal digits.
std::string withoutEscapes(std::string_view uri)
{
    std::string result;
    for (size_t i = 0; i < uri.size(); ++i) {
        uint8_t byte = 0;
        const char* digits = uri.data() + i + 1;
        const bool escaped = uri[i] == '%' && i + 2 < uri.size() &&
                             std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        result += escaped ? static_cast<char>(byte) : uri[i];
        if (escaped) i += 2;
    }
    return result;
}

std::string decodeBase64(std::string digits)
{
    // The decoder knows neither white space nor padding.
    size_t kept = 0;
    for (const char c : digits) {
        if (!std::strchr(" \t\r\n=", c)) digits[kept++] = c;
    }
    digits.resize(kept);
    std::string bytes(digits.size() / 4 * 3 + 6, '\0');
    const int32_t written = MMdecodeBase64(reinterpret_cast<const uint8_t*>(digits.data()),
                                           static_cast<uint32_t>(digits.size()),
                                           reinterpret_cast<uint8_t*>(bytes.data()));
    bytes.resize(written > 0 ? static_cast<size_t>(written) : 0);
    return bytes;
}

bool readData(const std::string& reference, std::string& bytes)
{
    const size_t comma = reference.find(',');
    if (comma == reference.npos) return false;
    const std::string content = withoutEscapes(std::string_view(reference).substr(comma + 1));
    const std::string_view kind = std::string_view(reference).substr(0, comma);
    const size_t semicolon = kind.rfind(';');
    const bool base64 =
        semicolon != kind.npos && equalsIgnoringCase(trimmed(kind.substr(semicolon + 1)), "base64");
    bytes = base64 ? decodeBase64(content) : content;
    return !bytes.empty();
}

} // namespace

bool isData(std::string_view reference)
{
    return equalsIgnoringCase(reference.substr(0, 5), "data:");
}

bool Resources::read(const std::string& reference, std::string& bytes) const
{
    if (reference.size() > mostBytes_) return false;
    if (isData(reference)) return readData(reference, bytes);
    if (!files_ || !isRelativeFile(reference)) return false;
    return readFile(folder_ + withoutEscapes(reference), mostBytes_, bytes).empty() &&
           !bytes.empty();
}

Resources Resources::beside(const std::string& reference) const
{
    const size_t slash = isData(reference) ? reference.npos : reference.rfind('/');
    const std::string folder = slash == reference.npos ? "" : reference.substr(0, slash + 1);
    return {folder_ + withoutEscapes(folder), files_, mostBytes_};
}

std::string readFile(const std::string& fileName, uint64_t mostBytes, std::string& bytes)
{
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(fileName.c_str(), "rb"));
    if (!file) return std::strerror(errno);
    struct stat status = {};
    if (fstat(fileno(file.get()), &status) == 0 && S_ISDIR(status.st_mode)) return "is a folder";
    bytes.clear();
    char block[1 << 16];
    while (const size_t count = std::fread(block, 1, sizeof block, file.get())) {
        bytes.append(block, count);
        if (bytes.size() > mostBytes) return "is too large";
    }
    return std::ferror(file.get()) ? "cannot be read" : "";
}

bool decompress(std::string& bytes, uint64_t mostBytes)
{
    if (bytes.compare(0, 2, "\x1F\x8B") != 0) return true;
    constexpr int kGzipWithLargestWindow = 15 + 16;
    z_stream stream = {};
    if (inflateInit2(&stream, kGzipWithLargestWindow) != Z_OK) return false;
    stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string result;
    int state = Z_OK;
    char block[1 << 16];
    while (state == Z_OK && result.size() <= mostBytes) {
        stream.next_out = reinterpret_cast<Bytef*>(block);
        stream.avail_out = sizeof block;
        state = inflate(&stream, Z_NO_FLUSH);
        result.append(block, sizeof block - stream.avail_out);
    }
    inflateEnd(&stream);
    bytes = std::move(result);
    return state == Z_STREAM_END && bytes.size() <= mostBytes;
}

} // namespace Svg
} // namespace KAVO
