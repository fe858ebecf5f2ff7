#include "memory/Vector.h"

#include "tests/support/FailingHeap.h"

#include <random>
#include <vector>

namespace {

TEST(Vector, FollowsAStandardVector)
{
    std::mt19937 random(5);
    FailingHeap heap;
    Vector vector;
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
        const auto modelPosition = model.begin() + static_cast<std::ptrdiff_t>(at);
        const uint32_t choice = model.size() < 200 ? random() % 5 : 4 + random() % 4;
        if (choice < 2) {
            ASSERT_EQ(vector.push(source), 0u);
            model.push_back(element);
        } else if (choice < 4) {
            ASSERT_EQ(vector.insertBefore(source, items() + at), 0u);
            model.insert(modelPosition, element);
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
        const bool empty = vector.initialize(2, 1, 1) != 0;
        EXPECT_EQ(vector.items == nullptr, empty);
        for (int i = 0; i < 3; ++i) {
            const uint8_t before = vector.count;
            const uint32_t result = vector.push(&element);
            EXPECT_EQ(vector.count, before + (result == 0 ? 1 : 0));
        }
        vector.deinitialize();
    });
}

TEST(Vector, RemovingFromAnEmptyOneOnlyWrapsTheCount)
{
    Vector vector;
    ASSERT_EQ(vector.initialize(1, 1, 4), 0u);
    vector.remove(vector.items);
    EXPECT_EQ(vector.count, 255);
    vector.deinitialize();
}

} // namespace
