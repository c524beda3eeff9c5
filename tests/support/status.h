// Statuses compared by value and, on a failure, printed by name:
//   EXPECT_STATUS(tqsListCreate(&list, item), TQS_OK);
#ifndef TQOMACP_TESTS_SUPPORT_STATUS_H
#define TQOMACP_TESTS_SUPPORT_STATUS_H

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tqstypes.h"

namespace tqstest {

inline std::string StatusText(TqsResult status) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%X", static_cast<unsigned>(status));
    const char *name = tqsResultName(status);
    return name != nullptr ? std::string(name) + " (" + hex + ")" : std::string(hex);
}

inline ::testing::AssertionResult StatusEq(const char *actualExpr, const char *, TqsResult actual,
                                           TqsResult expected) {
    if (actual == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << actualExpr << " is " << StatusText(actual) << ", expected "
                                         << StatusText(expected);
}

}  // namespace tqstest

#define EXPECT_STATUS(actual, expected) EXPECT_PRED_FORMAT2(::tqstest::StatusEq, actual, expected)

#endif  // TQOMACP_TESTS_SUPPORT_STATUS_H
