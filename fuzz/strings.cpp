// SPDX-License-Identifier: MIT
// Base64, UTF-8 and the string helpers, with destinations of exactly the size asked for.
#include "fuzz/HostileScene.h"
#include "util/Base64.h"
#include "util/WideString.h"

using namespace KAVO::Graphics2D;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ByteReader in(data, size);
    const uint8_t first = in.byte();
    const std::vector<uint8_t> bytes = in.array<uint8_t>(in.left());
    const uint32_t length = static_cast<uint32_t>(bytes.size());

    std::vector<uint8_t> decoded(length / 4 * 3 + 3);
    const int32_t written = MMdecodeBase64(bytes.data(), length, decoded.data());
    require(written >= 0 && static_cast<size_t>(written) <= decoded.size(), "decoded bytes fit");

    uint16_t* wide = MMstrUtf8ToWs(bytes.data(), length);
    require(wide != nullptr, "memory does not run out");
    const int32_t count = MMwsstrlen(wide);
    require(count >= 0 && static_cast<uint32_t>(count) <= length, "no more units than bytes");

    std::vector<uint16_t> copy(static_cast<size_t>(count) + 1);
    MM_wstrncpy(copy.data(), wide, count + 1);
    require(MM_wstrcmp(copy.data(), wide) == 0, "a copy is equal");
    require(MM_wstrncmp(copy.data(), wide, first) == 0, "its beginning too");
    const uint16_t* found = MM_wstrchr(wide, first);
    require(found >= wide && found <= wide + count, "what is found is in the string");

    MMContext2D context;
    context.preserveSpace = first & 1;
    context.ParseText(copy.data(), wide);
    require(MMwsstrlen(copy.data()) <= count, "white space does not grow");
    ParseText2(wide, wide);
    std::free(wide);
    return 0;
}
