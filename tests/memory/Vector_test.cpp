// SPDX-License-Identifier: MIT
#include "memory/Vector.h"

#include "tests/support/FailingHeap.h"

#include <random>
#include <vector>

namespace {

// The heap refuses every fourth time that it is asked to let the vector grow.
TEST(Vector, FollowsAStandardVector)
{
    std::mt19937 random(5);
    FailingHeap heap;
    Vector vector;
    heap.failAt(1);
    EXPECT_EQ(vector.initialize(sizeof(uint16_t), 3, 2), 1u);
    ASSERT_EQ(vector.initialize(sizeof(uint16_t), 3, 2), 0u);
    std::vector<uint16_t> model;
    const auto items = [&] { return reinterpret_cast<uint16_t*>(vector.items); };
    for (int step = 0; step < 5000; ++step) {
        // Mostly elements from outside, now and then one of the vector's own.
        uint16_t element = static_cast<uint16_t>(random());
        const size_t at = model.empty() ? 0 : random() % model.size();
        const bool own = !model.empty() && random() % 4 == 0;
        const uint16_t* source = own ? items() + random() % model.size() : &element;
        element = *source;
        heap.failAt(step % 4 == 0 ? 1 : 0);
        const uint32_t refused = step % 4 == 0 && vector.count == vector.capacity ? 1 : 0;
        const auto modelPosition = model.begin() + static_cast<std::ptrdiff_t>(at);
        const uint32_t choice = model.size() < 200 ? random() % 5 : 4 + random() % 4;
        if (choice < 2) {
            ASSERT_EQ(vector.push(source), refused);
            if (refused == 0) model.push_back(element);
        } else if (choice < 4) {
            ASSERT_EQ(vector.insertBefore(source, items() + at), refused);
            if (refused == 0) model.insert(modelPosition, element);
        } else if (model.empty()) {
            ASSERT_EQ(vector.pop(nullptr), 4096u);
        } else if (choice == 4) {
            ASSERT_EQ(vector.pop(&element), 0u);
            ASSERT_EQ(element, model.back());
            model.pop_back();
        } else {
            vector.remove(items() + at);
            model.erase(modelPosition);
        }
        ASSERT_EQ(std::vector<uint16_t>(items(), items() + vector.count), model);
    }
    vector.deinitialize();
    EXPECT_EQ(heap.liveBlocks(), 0);
    EXPECT_EQ(vector.items, nullptr);
}

TEST(Vector, GrowsToAtMost255Elements)
{
    const uint8_t element = 1;
    const std::pair<uint8_t, uint32_t> cases[] = {{16, 240}, {1, 255}, {255, 255}, {0, 0}};
    for (const auto& [growBy, most] : cases) {
        Vector vector;
        ASSERT_EQ(vector.initialize(1, growBy, 0), 0u);
        uint32_t pushed = 0;
        while (vector.push(&element) == 0)
            ++pushed;
        EXPECT_EQ(pushed, most) << int{growBy};
        EXPECT_EQ(vector.insertBefore(&element, vector.items), 1u);
        vector.deinitialize();
        vector.remove(vector.items); // only wraps the count
        EXPECT_EQ(vector.count, 255);
    }
}

} // namespace
