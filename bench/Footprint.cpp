// SPDX-License-Identifier: MIT
// Machine code is read from the library's objects, heap from the allocator.
#include "Footprint.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMText.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <link.h>
#include <malloc.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// Bytes of machine code in an object file; 0 when it cannot be read.
size_t codeBytes(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    ElfW(Ehdr) header;
    if (bytes.size() < sizeof header) return 0;
    std::memcpy(&header, bytes.data(), sizeof header);
    std::vector<ElfW(Shdr)> sections(header.e_shnum);
    const size_t sectionBytes = sections.size() * sizeof(ElfW(Shdr));
    if (sections.empty() || header.e_shoff + sectionBytes > bytes.size()) return 0;
    std::memcpy(sections.data(), bytes.data() + header.e_shoff, sectionBytes);
    size_t total = 0;
    for (const ElfW(Shdr) & section : sections)
        if ((section.sh_flags & SHF_EXECINSTR) != 0) total += section.sh_size;
    return total;
}

size_t heapBytes()
{
    return mallinfo2().uordblks;
}

// Glyphs of more sizes than the cache holds.
void fillCache(MMContext2D& context)
{
    MMText letters("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    constexpr int16_t kSide = 1000;
    std::vector<Pixel> pixels(kSide * kSide);
    setTarget(context, pixels.data(), kSide, kSide);
    for (Fixed size = 8; size < 48; ++size) {
        context.fontSize = size * kFixedOne;
        context.drawText(letters.units(), 0, 100 * kFixedOne);
    }
}

} // namespace

size_t libraryCodeBytes()
{
    std::istringstream files(MM2D_OBJECT_FILES);
    size_t total = 0;
    for (std::string file; std::getline(files, file, ':');)
        total += codeBytes(file);
    return total;
}

ContextMemory contextMemory()
{
    MMContext2D first; // starts the engine, which keeps memory of its own
    fillCache(first);
    const size_t before = heapBytes();
    const auto context = std::make_unique<MMContext2D>();
    const size_t atRest = heapBytes() - before;
    fillCache(*context);
    return {atRest, heapBytes() - before};
}
