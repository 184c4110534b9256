/* Counts the instructions of a guest between the calls that Marker.h describes, for qemu-arm's
   option -plugin with the argument out=FILE: a line for each region, in their order. */

#include "Marker.h"

#include <inttypes.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

/* What is used of qemu's interface for plugins, version 1. */
#define EXPORTED __attribute__((visibility("default")))
struct qemu_plugin_tb;
typedef void (*on_translation)(uint64_t id, struct qemu_plugin_tb* block);
typedef void (*on_system_call)(uint64_t id, unsigned vcpu, int64_t number, uint64_t a1, uint64_t a2,
                               uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7,
                               uint64_t a8);
void qemu_plugin_register_vcpu_tb_trans_cb(uint64_t id, on_translation callback);
void qemu_plugin_register_vcpu_syscall_cb(uint64_t id, on_system_call callback);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation,
                                              void* address, uint64_t value);
EXPORTED int qemu_plugin_version = 1;
EXPORTED int qemu_plugin_install(uint64_t id, const void* info, int argc, char** argv);

enum { add = 0, getpriority_of_arm = 96 };

static uint64_t executed;
static uint64_t at_begin;
static FILE* out;

static void translated(uint64_t id, struct qemu_plugin_tb* block) {
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, add, &executed, qemu_plugin_tb_n_insns(block));
}

static void called(uint64_t id, unsigned vcpu, int64_t number, uint64_t which, uint64_t who,
                   uint64_t a3, uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)id, (void)vcpu, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if (number != getpriority_of_arm || which != markerWhich) {
        return;
    }
    if (who == 0) {
        at_begin = executed;
    } else {
        fprintf(out, "%" PRIu64 "\n", executed - at_begin);
        fflush(out);
    }
}

int qemu_plugin_install(uint64_t id, const void* info, int argc, char** argv) {
    (void)info;
    if (argc != 1 || strncmp(argv[0], "out=", 4) != 0 || (out = fopen(argv[0] + 4, "w")) == NULL) {
        fprintf(stderr, "bench_qemu: name the file for the counts: out=FILE\n");
        return 1;
    }
    qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
    qemu_plugin_register_vcpu_syscall_cb(id, called);
    return 0;
}
