// SPDX-License-Identifier: MIT
// A plugin of QEMU's user emulation: at the program's end it prints on standard error how many
// instructions were run. Debian packages neither such a plugin nor the header of the interface
// (version 1, that of QEMU 4.2 to 8.2), so the few functions that it takes are declared here.
#include <cinttypes>
#include <cstddef>
#include <cstdio>

extern "C" {

struct qemu_plugin_tb; // a block of instructions that is translated, and run, as a whole
struct qemu_info_t;

constexpr int kAddInline = 0; // the only operation there is: adds a number to a 64-bit counter

void qemu_plugin_register_vcpu_tb_trans_cb(uint64_t plugin,
                                           void (*translated)(uint64_t plugin, qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb*, int operation, void* counter,
                                              uint64_t number);
size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb*);
void qemu_plugin_register_atexit_cb(uint64_t plugin, void (*atExit)(uint64_t plugin, void*), void*);

extern int qemu_plugin_version;
int qemu_plugin_version = 1;

int qemu_plugin_install(uint64_t plugin, const qemu_info_t*, int, char**);
}

namespace {

uint64_t instructions;

void countBlock(uint64_t, qemu_plugin_tb* block)
{
    qemu_plugin_register_vcpu_tb_exec_inline(block, kAddInline, &instructions,
                                             qemu_plugin_tb_n_insns(block));
}

void print(uint64_t, void*)
{
    std::fprintf(stderr, "%" PRIu64 "\n", instructions);
}

} // namespace

int qemu_plugin_install(uint64_t plugin, const qemu_info_t*, int, char**)
{
    qemu_plugin_register_vcpu_tb_trans_cb(plugin, countBlock);
    qemu_plugin_register_atexit_cb(plugin, print, nullptr);
    return 0;
}
