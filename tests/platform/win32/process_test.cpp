#include "platform/process_fixture.h"
#include "support/HUTOnce.h"

#include <array>
#include <atomic>

// Fault: an interrupt that misses the child; a lock that two hold, or that outlives its holder.
TEST_F(ProcessTest, InterruptAndLock) {
    HUTFileLock lock(temp.path("lock"));
    HUTFileLock::Result duringRun = HUTFileLock::Result::held;
    std::thread user([&] {
        comesTrueSoon([this] { return !readFile(temp.path("locked")).empty(); });
        duringRun = lock.tryLock();
        HUTFork::interruptAll();
    });
    EXPECT_EQ(act({"lock"}), HUTFork::interrupted);
    user.join();
    EXPECT_EQ(duringRun, HUTFileLock::Result::busy);
    EXPECT_TRUE(comesTrueSoon([&] { return lock.tryLock() == HUTFileLock::Result::held; }));
    EXPECT_EQ(HUTFileLock(temp.path("absent/lock")).tryLock(), HUTFileLock::Result::unavailable);
}

// Fault: two objects where there must be one, or none ever after a first failure.
TEST(OnceTest, MakesOneObject) {
    static HUTOnce once;
    static std::atomic<int> made{0};
    EXPECT_THROW(once.get([]() -> void* { throw 1; }), int);
    std::array<void*, 8> objects{};
    std::vector<std::thread> threads;
    for (void*& object : objects)
        threads.emplace_back([&object] {
            object = once.get([]() -> void* {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                ++made;
                return new int(0);
            });
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(made, 1);
    for (void* object : objects) EXPECT_EQ(object, objects[0]);
    delete static_cast<int*>(objects[0]);
}
