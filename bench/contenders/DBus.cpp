// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/DBus.h"

#include <gio/gio.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>

namespace bench {

namespace {

constexpr char busName[] = "org.qel.Bench";
constexpr char interfaceName[] = "org.qel.Bench.Point";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";
constexpr char sampleType[] = "(dti)";
constexpr char pathPrefix[] = "/point/";

struct ReleaseVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, ReleaseVariant>;

DBus::Connection connect() {
    GError* error = nullptr;
    DBus::Connection connection(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &error));
    if (!connection) {
        throw std::runtime_error(error->message);
    }
    return connection;
}

Variant call(GDBusConnection* connection, char const* service, char const* path, char const* interface,
             char const* method, GVariant* arguments) {
    GError* error = nullptr;
    Variant result(g_dbus_connection_call_sync(connection, service, path, interface, method, arguments,
                                               nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
    if (!result) {
        std::string const text = error->message;
        g_error_free(error);
        throw std::runtime_error(text);
    }
    return result;
}

Variant callBus(GDBusConnection* connection, char const* method, GVariant* arguments) {
    return call(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                arguments);
}

/// Object of a point, and property of a key.
std::string pathOf(long long svid) {
    return pathPrefix + hexOfPoint(svid);
}

std::string propertyOf(std::uint16_t key) {
    return "k" + std::to_string(key);
}

GVariant* variantOf(Sample const& sample) {
    return g_variant_new(sampleType, sample.number, guint64{sample.at}, gint32{sample.state});
}

Sample sampleIn(GVariant* variant) {
    double number = 0;
    guint64 at = 0;
    gint32 state = 0;
    g_variant_get(variant, sampleType, &number, &at, &state);
    return {number, at, static_cast<eStatus_Bits>(state)};
}

using Samples = std::unordered_map<long long, Sample>;

long long svidOf(char const* path, char const* property) {
    auto const point = std::stoull(std::string(path).substr(sizeof pathPrefix - 1), nullptr, 16);
    return static_cast<long long>(point | std::stoull(property + 1));
}

GVariant* getProperty(GDBusConnection* /*connection*/, char const* /*sender*/, char const* path,
                      char const* /*interface*/, char const* property, GError** /*error*/, void* samples) {
    return variantOf((*static_cast<Samples*>(samples))[svidOf(path, property)]);
}

gboolean setProperty(GDBusConnection* /*connection*/, char const* /*sender*/, char const* path,
                     char const* /*interface*/, char const* property, GVariant* value, GError** /*error*/,
                     void* samples) {
    (*static_cast<Samples*>(samples))[svidOf(path, property)] = sampleIn(value);
    return TRUE;
}

std::string interfaceDescription() {
    std::string text = "<node><interface name='" + std::string(interfaceName) + "'>";
    for (auto const key : valueKeys) {
        text += "<property name='" + propertyOf(key) + "' type='" + sampleType + "' access='readwrite'/>";
    }
    return text + "</interface></node>";
}

} // namespace

void DBus::Release::operator()(GDBusConnection* connection) const {
    g_object_unref(connection);
}

void DBus::serve(Plan const& plan) {
    Samples samples;
    for (auto const& access : plan.valueAccesses()) {
        samples.emplace(access.svid, Sample{0, 0, eStatus_ExpectedValue});
    }
    auto const connection = connect();
    auto* const node = g_dbus_node_info_new_for_xml(interfaceDescription().c_str(), nullptr);
    GDBusInterfaceVTable const table{nullptr, getProperty, setProperty, {}};
    for (auto const& point : plan.points()) {
        g_dbus_connection_register_object(connection.get(), pathOf(point.svid).c_str(), node->interfaces[0],
                                          &table, &samples, nullptr, nullptr);
    }
    callBus(connection.get(), "RequestName", g_variant_new("(su)", busName, 0U));
    g_main_loop_run(g_main_loop_new(nullptr, FALSE)); // until the process is ended
}

DBus::Writer::Writer() : connection_(connect()) {}

void DBus::Writer::build(Plan const& plan) {
    server_.emplace(std::vector<std::string>{ownProgram(), serveOption, std::string(plan.shape().name)});
    for (;;) {
        gboolean owned = FALSE;
        auto const answer = callBus(connection_.get(), "NameHasOwner", g_variant_new("(s)", busName));
        g_variant_get(answer.get(), "(b)", &owned);
        if (owned != FALSE) {
            return;
        }
        if (!server_->running()) {
            throw std::runtime_error("the process that serves the properties has ended");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool DBus::Writer::update(Access const& access, Sample const& sample) {
    call(connection_.get(), busName, pathOf(access.svid).c_str(), propertiesInterface, "Set",
         g_variant_new("(ssv)", interfaceName, propertyOf(keyOf(access.svid)).c_str(), variantOf(sample)));
    return true;
}

DBus::Reader::Reader(Plan const& /*plan*/) : connection_(connect()) {}

double DBus::Reader::fetch(Access const& access) {
    auto const answer =
        call(connection_.get(), busName, pathOf(access.svid).c_str(), propertiesInterface, "Get",
             g_variant_new("(ss)", interfaceName, propertyOf(keyOf(access.svid)).c_str()));
    GVariant* value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    Variant const owner(value);
    return sampleIn(value).number;
}

} // namespace bench
