// The calls of macOS's header of this name that the program makes.
#pragma once

#include <stdint.h>

constexpr int PROC_PIDPATHINFO_MAXSIZE = 4096;
constexpr int PROC_PIDTBSDINFO = 3;

struct proc_bsdinfo {
    uint32_t pbi_status;
    uint64_t pbi_start_tvsec;
    uint64_t pbi_start_tvusec;
};

extern "C" {
int proc_pidpath(int process, void* buffer, uint32_t size);
int proc_pidinfo(int process, int flavor, uint64_t argument, void* buffer, int size);
}
