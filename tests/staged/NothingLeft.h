// Whatever of the layer's is made while this lives must have gone when it ends.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/Picture.h"

namespace tdkviz::test {

class NothingLeft {
public:
    NothingLeft() = default;
    NothingLeft(const NothingLeft&) = delete;
    NothingLeft& operator=(const NothingLeft&) = delete;
    ~NothingLeft() {
        const TdkpCounts after = Counts();
        EXPECT_EQ(after.handles, before_.handles);
        EXPECT_EQ(after.windows, before_.windows);
        EXPECT_EQ(after.gdiObjects, before_.gdiObjects);
        EXPECT_EQ(after.threads, before_.threads);
        EXPECT_EQ(after.directDraw, before_.directDraw);
    }

private:
    const TdkpCounts before_ = Counts();
};

}  // namespace tdkviz::test
