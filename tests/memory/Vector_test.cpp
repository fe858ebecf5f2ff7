#include "memory/Vector.h"

#include "tests/support/FailingHeap.h"

#include <cstring>
#include <random>
#include <vector>

namespace {

struct Element {
    uint8_t bytes[3];
};
bool operator==(const Element& a, const Element& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::vector<Element> contentsOf(const Vector& vector)
{
    std::vector<Element> contents(vector.count);
    if (vector.count != 0)
        std::memcpy(contents.data(), vector.items, contents.size() * sizeof(Element));
    return contents;
}

TEST(Vector, FollowsAStandardVector)
{
    std::mt19937 random(5);
    FailingHeap heap;
    Vector vector;
    ASSERT_EQ(vector.initialize(sizeof(Element), 3, 2), 0u);
    std::vector<Element> model;
    for (int step = 0; step < 5000; ++step) {
        // Mostly elements from outside, now and then one of the vector's own.
        Element fresh = {{static_cast<uint8_t>(random()), static_cast<uint8_t>(random()), 7}};
        const size_t at = model.empty() ? 0 : random() % model.size();
        void* position = vector.items + at * sizeof(Element);
        const bool own = !model.empty() && random() % 4 == 0;
        const void* source = own ? vector.items + random() % model.size() * sizeof(Element)
                                 : static_cast<const void*>(&fresh);
        std::memcpy(&fresh, source, sizeof fresh);
        const auto modelPosition = model.begin() + static_cast<std::ptrdiff_t>(at);
        switch (model.size() < 200 ? random() % 5 : 4 + random() % 4) {
        case 0:
        case 1:
            ASSERT_EQ(vector.push(source), 0u);
            model.push_back(fresh);
            break;
        case 2:
        case 3:
            ASSERT_EQ(vector.insertBefore(source, position), 0u);
            model.insert(modelPosition, fresh);
            break;
        case 4: {
            Element popped = {};
            ASSERT_EQ(vector.pop(&popped), model.empty() ? 4096u : 0u);
            if (model.empty()) break;
            ASSERT_EQ(popped, model.back());
            model.pop_back();
            break;
        }
        default:
            vector.remove(position);
            model.erase(modelPosition);
        }
        ASSERT_EQ(contentsOf(vector), model);
    }
    vector.deinitialize();
    EXPECT_EQ(heap.liveBlocks(), 0);
    EXPECT_EQ(vector.items, nullptr);
}

TEST(Vector, GrowsToAtMost255Elements)
{
    const uint8_t element = 1;
    const struct {
        uint8_t growBy;
        uint32_t most;
    } cases[] = {{16, 240}, {1, 255}, {255, 255}, {0, 0}};
    for (const auto& c : cases) {
        Vector vector;
        ASSERT_EQ(vector.initialize(1, c.growBy, 0), 0u);
        EXPECT_EQ(vector.items, nullptr);
        uint32_t pushed = 0;
        while (vector.push(&element) == 0)
            ++pushed;
        EXPECT_EQ(pushed, c.most) << int{c.growBy};
        EXPECT_EQ(vector.capacity, c.most);
        EXPECT_EQ(vector.insertBefore(&element, vector.items), 1u);
        vector.deinitialize();
    }
}

TEST(Vector, SurvivesARefusingHeap)
{
    failEachAllocation([] {
        const uint16_t element = 0x1234;
        Vector vector;
        if (vector.initialize(2, 1, 1) != 0) {
            EXPECT_EQ(vector.items, nullptr);
        }
        for (int i = 0; i < 3; ++i) {
            const uint8_t before = vector.count;
            const uint32_t result = vector.push(&element);
            EXPECT_EQ(vector.count, before + (result == 0 ? 1 : 0));
        }
        vector.deinitialize();
    });
}

TEST(Vector, OddUses)
{
    Vector vector;
    ASSERT_EQ(vector.initialize(1, 1, 4), 0u);
    EXPECT_EQ(vector.pop(nullptr), 4096u);
    vector.remove(vector.items);
    EXPECT_EQ(vector.count, 255); // wraps, and moves nothing
    vector.deinitialize();

    ASSERT_EQ(vector.initialize(0, 2, 0), 0u);
    const uint8_t element = 0;
    EXPECT_EQ(vector.push(&element), 0u);
    EXPECT_EQ(vector.insertBefore(&element, vector.items), 0u);
    EXPECT_EQ(vector.count, 2);
    vector.remove(vector.items);
    EXPECT_EQ(vector.count, 1);
    vector.deinitialize();
}

} // namespace
