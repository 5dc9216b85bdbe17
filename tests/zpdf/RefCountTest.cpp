#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace zpdf;

namespace {

// A Null that counts its destructions.
class Probe : public Null {
public:
    explicit Probe(int& destroyed) : destroyed_(destroyed) {}
    ~Probe() override { ++destroyed_; }

private:
    int& destroyed_;
};

TEST(RefCount, LastArrayPointerReleasesItsElements)
{
    int destroyed = 0;
    Ptr<Probe> shared = make<Probe>(destroyed);
    {
        Ptr<Array> array = make<Array>();
        array->append(make<Probe>(destroyed));
        array->append(shared);
        array->append(shared);
        Ptr<Array> nested = make<Array>();
        nested->append(make<Probe>(destroyed));
        array->append(nested);
        EXPECT_EQ(shared->refCount(), 3);
        Ptr<Array> second = array;
        second = nullptr;
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 2) << "the unshared element and the nested one";
    EXPECT_EQ(shared->refCount(), 1);
    shared = nullptr;
    EXPECT_EQ(destroyed, 3);
}

TEST(RefCount, MoveSelfAssignmentAndAdoption)
{
    Ptr<Number> number = make<Number>(1);
    Ptr<Object> moved = Ptr<Object>(number);
    Ptr<Object> object = std::move(moved);
    EXPECT_FALSE(moved);
    Ptr<Object>& alias = object;
    object = alias;
    EXPECT_EQ(number->refCount(), 2);
    object = make<Number>(2);
    EXPECT_EQ(number->refCount(), 1);
    Ptr<Number> again(number.get()); // a borrowed pointer becomes an owner again
    EXPECT_EQ(number->refCount(), 2);
}

TEST(RefCount, CopiesFromManyThreadsKeepCountsRight)
{
    Ptr<Array> array = make<Array>();
    array->append(make<Number>(1));
    const Ptr<Name> type = names::Type();
    const std::int32_t typeCount = type->refCount();
    std::vector<std::thread> workers;
    for (int t = 0; t < 8; ++t) {
        workers.emplace_back([&array, &type] {
            std::vector<Ptr<Object>> held;
            for (int i = 0; i < 100000; ++i) {
                held.push_back(array);
                held.push_back(type);
                held.push_back(Ptr<Object>(array->at(0)));
                if (held.size() >= 15)
                    held.clear();
            }
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_EQ(array->refCount(), 1);
    EXPECT_EQ(array->at(0)->refCount(), 1);
    EXPECT_EQ(type->refCount(), typeCount);
}

} // namespace
