// Qt's macros that wait for something, with the timeout of tests that wait for other processes.
#pragma once

#include "tests/support/Process.h"

#include <QtCore/QDeadlineTimer>
#include <QtTest/QTest>

namespace timeout {

/// Handles events until @p condition holds; false when it does not come to that.
template<typename Condition>
bool waitUntil(Condition condition)
{
    constexpr int kStep = 10; // milliseconds
    const QDeadlineTimer deadline(role::kTimeout);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QTest::qWait(kStep);
    }
    return true;
}

} // namespace timeout

// Those of Qt 6.8 give a count of 64 bits to an int in every test that uses them, which our warnings do not let pass.
// Those of any Qt give up after five seconds, in which a busy machine may not have started a process.
#undef QTRY_VERIFY
#undef QTRY_COMPARE
#undef QTRY_VERIFY_WITH_TIMEOUT
#undef QTRY_COMPARE_WITH_TIMEOUT

/// Handles events until @p condition holds; the test fails when it does not come to that.
#define QTRY_VERIFY(condition) QVERIFY(timeout::waitUntil([&] { return static_cast<bool>(condition); }))

/// The same for two values that are to become equal; the test fails with both of them.
#define QTRY_COMPARE(actual, expected)                                                                                 \
    do {                                                                                                               \
        static_cast<void>(timeout::waitUntil([&] { return (actual) == (expected); }));                                 \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)
