// Record sizes that callers on 32-bit targets rely on, in 32-bit words. Checked by the compiler; on
// other targets pointers make the records larger.
#include "graphics2d/MMPaint.h"
#include "graphics2d/MMPixmap.h"
#include "memory/MMBucketContext.h"
#include "memory/MMCacheContext.h"
#include "memory/MMStackContext.h"
#include "memory/Vector.h"

#include <cstddef>
#include <cstdint>

namespace {

template <class T>
constexpr bool hasWords(size_t words)
{
    return sizeof(void*) != 4 || sizeof(T) == words * sizeof(uint32_t);
}

static_assert(hasWords<MMPixmap>(5), "");
static_assert(hasWords<MMPaint>(14), "");
static_assert(hasWords<MMStackContext>(4), "");
static_assert(hasWords<MMBucketContext>(5), "");
static_assert(hasWords<Vector>(2), "");
static_assert(hasWords<MMCacheInteriorNode>(18), "");
static_assert(hasWords<MMCacheEntry>(6), "");
static_assert(hasWords<MMCacheContext<48>>(9), "");
static_assert(sizeof(Matrix2D) == 6 * sizeof(uint32_t), "on every target");

} // namespace
