// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/callProxy.h"

#include "hardwaremanager/hardwaremanager.h"
#include "tests/reader/BusFailures.h"
#include "tests/reader/SleepRecorder.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace std::chrono_literals;
using qel::test::FakeHardwareManager;
using qel::test::SleepRecorder;

constexpr char busName[] = "org.qel.HardwareManager";
constexpr auto pause = 123ms;

class CallProxyTest : public testing::Test {
protected:
    ~CallProxyTest() override {
        g_clear_error(&error);
        g_clear_object(&proxy);
    }

    /// Makes a proxy the way a reader does, before the part under test.
    void makeProxy() {
        proxy = hardwaremanager__proxy_new_for_bus_sync(G_BUS_TYPE_SYSTEM, G_DBUS_PROXY_FLAGS_NONE, busName,
                                                        "/", nullptr, &error);
        ASSERT_NE(proxy, nullptr);
    }

    /// Calls "initialized" through the part under test, counting what it does.
    bool call() {
        auto const create = [this](GBusType bus, GDBusProxyFlags flags, char const* name, char const* path,
                                   GCancellable* cancellable, GError** failure) {
            EXPECT_EQ(bus, G_BUS_TYPE_SYSTEM);
            EXPECT_EQ(flags, G_DBUS_PROXY_FLAGS_NONE);
            EXPECT_STREQ(name, busName);
            EXPECT_STREQ(path, "/");
            EXPECT_EQ(cancellable, nullptr);
            EXPECT_EQ(proxy, nullptr) << "the holder was not emptied first";
            onCreation(++creations);
            return hardwaremanager__proxy_new_for_bus_sync(bus, flags, name, path, cancellable, failure);
        };
        auto const initialized = [this](hardwaremanager* target, int* out, GCancellable* cancellable,
                                        GError** failure) {
            ++calls;
            EXPECT_EQ(target, proxy);
            EXPECT_EQ(g_dbus_proxy_get_default_timeout(G_DBUS_PROXY(target)), 60000);
            EXPECT_EQ(cancellable, nullptr);
            EXPECT_EQ(failure, &error);
            return hardwaremanager__call_initialized_sync(target, out, cancellable, failure);
        };
        SleepRecorder const time;
        bool const result = shm::callProxy<false>(busName, "/", error, create, &proxy, initialized, &answer);
        pauses = SleepRecorder::count(pause);
        return result;
    }

    std::function<void(int)> onCreation = [](int) {
    };
    hardwaremanager* proxy = nullptr;
    GError* error = nullptr;
    int answer = 0;
    int creations = 0;
    int calls = 0;
    std::size_t pauses = 0;
};

TEST_F(CallProxyTest, OwnerPresent_CallsThroughTheSameProxyAtOnce) {
    FakeHardwareManager service;
    service.setAnswer(42);
    makeProxy();
    auto* const before = proxy;
    EXPECT_TRUE(call());
    EXPECT_EQ(answer, 42);
    EXPECT_EQ(proxy, before);
    EXPECT_EQ(creations, 0);
    EXPECT_EQ(pauses, 0U);
    EXPECT_EQ(service.calls(), 1U);
    EXPECT_EQ(error, nullptr);
}

TEST_F(CallProxyTest, ServiceAnswersWithError_GivesFalseAndTheError) {
    FakeHardwareManager service;
    service.setError("still starting");
    makeProxy();
    EXPECT_FALSE(call());
    ASSERT_NE(error, nullptr);
    EXPECT_STREQ(error->message, "GDBus.Error:org.qel.Error: still starting");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(creations, 0);
}

TEST_F(CallProxyTest, OwnerAppearsAtCreation_CallsAfterThatManyPauses) {
    for (int const creation : {1, 2, 3}) {
        FakeHardwareManager service(false);
        makeProxy();
        onCreation = [&](int current) {
            if (current == creation) {
                service.ownName();
            }
        };
        creations = calls = answer = 0;
        EXPECT_TRUE(call());
        EXPECT_EQ(answer, 1);
        EXPECT_EQ(creations, creation);
        EXPECT_EQ(pauses, static_cast<std::size_t>(creation));
        EXPECT_EQ(calls, 1);
        g_clear_object(&proxy);
    }
}

TEST_F(CallProxyTest, OwnerNeverAppears_CallsAnywayAfterThreeCreations) {
    makeProxy();
    EXPECT_FALSE(call());
    EXPECT_EQ(creations, 3);
    EXPECT_EQ(pauses, 3U);
    EXPECT_EQ(calls, 1);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain, G_DBUS_ERROR);
    EXPECT_EQ(error->code, G_DBUS_ERROR_SERVICE_UNKNOWN);
    EXPECT_NE(proxy, nullptr);
}

TEST_F(CallProxyTest, EmptyHolder_IsFilled) {
    FakeHardwareManager service;
    EXPECT_TRUE(call());
    EXPECT_EQ(creations, 1);
    EXPECT_EQ(pauses, 1U);
    EXPECT_EQ(answer, 1);
    EXPECT_NE(proxy, nullptr);
}

TEST_F(CallProxyTest, OldProxy_IsReleasedBeforeTheNewOneIsMade) {
    makeProxy();
    bool released = false;
    g_object_weak_ref(
        G_OBJECT(proxy), [](void* flag, GObject*) { *static_cast<bool*>(flag) = true; }, &released);
    onCreation = [&](int) {
        EXPECT_TRUE(released);
    };
    EXPECT_FALSE(call());
    EXPECT_EQ(creations, 3);
}

TEST_F(CallProxyTest, NoHolder_SaysSoAndCallsNothing) {
    auto const create = [this](GBusType, GDBusProxyFlags, char const*, char const*, GCancellable*,
                               GError**) -> hardwaremanager* {
        ++creations;
        return nullptr;
    };
    auto const initialized = [this](hardwaremanager*, int*, GCancellable*, GError**) {
        ++calls;
        return TRUE;
    };
    hardwaremanager** const noHolder = nullptr;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(shm::callProxy<false>(busName, "/", error, create, noHolder, initialized, &answer));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "No proxy given");
    EXPECT_EQ(creations, 0);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(error, nullptr);
}

TEST_F(CallProxyTest, BusUnreachable_ReportsCreationFailure) {
    qel::test::UnreachableBus const down;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(call());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "The attempt to get a new proxy failed with: Could not connect: No such file or directory\n");
    ASSERT_NE(error, nullptr);
    EXPECT_STREQ(g_quark_to_string(error->domain), "g-cppdbusproxycall-error-quark");
    EXPECT_EQ(error->code, 24);
    EXPECT_STREQ(error->message, "The proxy creation failed");
    EXPECT_EQ(proxy, nullptr);
    EXPECT_EQ(creations, 1);
    EXPECT_EQ(pauses, 0U);
    EXPECT_EQ(calls, 0);
}

TEST_F(CallProxyTest, CreationFailsLater_ReportsItAndGivesUp) {
    makeProxy();
    auto const create = [this](GBusType bus, GDBusProxyFlags flags, char const* name, char const* path,
                               GCancellable* cancellable, GError** failure) -> hardwaremanager* {
        if (++creations == 2) {
            g_set_error_literal(failure, G_IO_ERROR, G_IO_ERROR_FAILED, "second one refused");
            return nullptr;
        }
        return hardwaremanager__proxy_new_for_bus_sync(bus, flags, name, path, cancellable, failure);
    };
    testing::internal::CaptureStderr();
    EXPECT_FALSE(shm::callProxy<false>(busName, "/", error, create, &proxy,
                                       hardwaremanager__call_initialized_sync, &answer));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "The attempt to get a new proxy failed with: second one refused\n");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code, 24);
    EXPECT_EQ(creations, 2);
    EXPECT_EQ(proxy, nullptr);
}

TEST_F(CallProxyTest, Arguments_AreForwarded) {
    FakeHardwareManager const service;
    makeProxy();
    auto number = std::make_unique<int>(5);
    std::string text = "kept";
    auto const take = [](hardwaremanager*, std::unique_ptr<int> moved, std::string& referred, GCancellable*,
                         GError**) {
        referred = "changed to " + std::to_string(*moved);
        return TRUE;
    };
    EXPECT_TRUE(shm::callProxy<false>(busName, "/", error, hardwaremanager__proxy_new_for_bus_sync, &proxy,
                                      take, std::move(number), text));
    EXPECT_EQ(text, "changed to 5");
    EXPECT_EQ(number, nullptr);
}

TEST_F(CallProxyTest, Renewal_KeepsTheBusConnectionAlive) {
    makeProxy();
    void* connection = g_dbus_proxy_get_connection(G_DBUS_PROXY(proxy));
    auto* const before = G_OBJECT(connection);
    g_object_add_weak_pointer(before, &connection); // becomes null with the connection's end
    EXPECT_FALSE(call());
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(static_cast<void*>(g_dbus_proxy_get_connection(G_DBUS_PROXY(proxy))), connection);
    g_object_remove_weak_pointer(before, &connection);
}

TEST_F(CallProxyTest, Renewal_AfterConnectionWasClosed_ConnectsAnewAtALaterCall) {
    makeProxy();
    qel::test::closeSharedConnection();
    FakeHardwareManager const service;
    EXPECT_TRUE(qel::test::eventually([&] {
        g_clear_error(&error);
        return call();
    }));
    EXPECT_EQ(answer, 1);
}

} // namespace
