// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A plugin of qemu's user emulation. It counts the instructions that the main thread of the emulated program executes, and
/// prints the count, one a line, whenever that thread marks a moment: it writes to the file descriptor -1. Start it by
/// "qemu-arm -plugin FILE -d plugin -D COUNTS PROGRAM".
///
/// A conditional instruction counts whether its condition holds or not.
///
/// Debian ships no header for plugins, so the part of the emulator's interface that this needs is declared here.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

// NOLINTBEGIN(readability-identifier-naming,modernize-use-using): the emulator's names.
extern "C" {

struct qemu_plugin_tb; // a block of instructions that is translated as a whole and always begun at its start

using qemu_plugin_id_t = std::uint64_t;
using TranslationCallback = void (*)(qemu_plugin_id_t id, qemu_plugin_tb* block);
using ExecutionCallback = void (*)(unsigned int thread, void* data);
using SystemCallCallback = void (*)(qemu_plugin_id_t id, unsigned int thread, std::int64_t number,
                                    std::uint64_t a1, std::uint64_t a2, std::uint64_t a3, std::uint64_t a4,
                                    std::uint64_t a5, std::uint64_t a6, std::uint64_t a7, std::uint64_t a8);

std::size_t qemu_plugin_tb_n_insns(qemu_plugin_tb const* block);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, TranslationCallback callback);
void qemu_plugin_register_vcpu_tb_exec_cb(qemu_plugin_tb* block, ExecutionCallback callback, int registers,
                                          void* data);
void qemu_plugin_register_vcpu_syscall_cb(qemu_plugin_id_t id, SystemCallCallback callback);
void qemu_plugin_outs(char const* text);

/// What the emulator looks for.
__attribute__((visibility("default"))) int qemu_plugin_version = 1;
__attribute__((visibility("default"))) int qemu_plugin_install(qemu_plugin_id_t id, void const* info,
                                                               int argc, char** argv);

} // extern "C"

namespace {

constexpr unsigned int mainThread = 0;

std::uint64_t executed = 0; // by the main thread, which alone reads and changes it

void onExecution(unsigned int thread, void* data) {
    if (thread == mainThread) {
        executed += reinterpret_cast<std::uintptr_t>(data);
    }
}

void onTranslation(qemu_plugin_id_t /*id*/, qemu_plugin_tb* block) {
    constexpr int readsNoRegister = 0;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the emulator hands this word to the callback and does nothing else.
    auto* const instructions = reinterpret_cast<void*>(qemu_plugin_tb_n_insns(block));
    qemu_plugin_register_vcpu_tb_exec_cb(block, onExecution, readsNoRegister, instructions);
}

void onSystemCall(qemu_plugin_id_t /*id*/, unsigned int thread, std::int64_t number, std::uint64_t a1,
                  std::uint64_t /*a2*/, std::uint64_t /*a3*/, std::uint64_t /*a4*/, std::uint64_t /*a5*/,
                  std::uint64_t /*a6*/, std::uint64_t /*a7*/, std::uint64_t /*a8*/) {
    constexpr std::int64_t writeOnArm = 4;
    constexpr auto noDescriptor = static_cast<std::uint32_t>(-1);
    if (thread == mainThread && number == writeOnArm && static_cast<std::uint32_t>(a1) == noDescriptor) {
        std::array<char, 32> line{};
        static_cast<void>(
            std::snprintf(line.data(), line.size(), "%llu\n", static_cast<unsigned long long>(executed)));
        qemu_plugin_outs(line.data());
    }
}

} // namespace

int qemu_plugin_install(qemu_plugin_id_t id, void const* /*info*/, int /*argc*/, char** /*argv*/) {
    qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslation);
    qemu_plugin_register_vcpu_syscall_cb(id, onSystemCall);
    return 0;
}
// NOLINTEND(readability-identifier-naming,modernize-use-using)
