#pragma once

#include <QApplication>
#include <QObject>
#include <QTest>

#include <functional>
#include <memory>
#include <vector>

// Several QtTest classes in one test executable: each file registers its class with
// KVRTB_REGISTER_TEST(Class), and the folder's main.cpp calls runRegisteredTests. The classes
// run in registration order under one QApplication (offscreen in the test runs).
namespace kvrtb::test {

using TestFactory = std::function<std::unique_ptr<QObject>()>;

inline std::vector<TestFactory> &registeredTests()
{
    static std::vector<TestFactory> tests;
    return tests;
}

struct RegisterTest {
    explicit RegisterTest(TestFactory factory) { registeredTests().push_back(std::move(factory)); }
};

inline int runRegisteredTests(int argc, char **argv)
{
    QApplication app(argc, argv);
    int status = 0;
    for (const TestFactory &factory : registeredTests()) {
        const std::unique_ptr<QObject> test = factory();
        status |= QTest::qExec(test.get(), argc, argv);
    }
    return status;
}

} // namespace kvrtb::test

#define KVRTB_REGISTER_TEST(Class) \
    static const kvrtb::test::RegisterTest registerTest##Class{[] { return std::unique_ptr<QObject>(new Class); }};
