// The system calls the POSIX platform services make, behind one table that
// tests can change to make a call fail:
//
//     PosixCalls().stat = [](const char*, struct stat*) { errno = EACCES; return -1; };
//     ...
//     RestorePosixCalls();
//
// Every service calls through the table, never the C library directly, so a
// test can reach the failure paths (an unreadable store, a missing passwd
// entry, a failing getenv) that the machine it runs on would never produce.
#pragma once

#if !defined(_WIN32)

#include <pwd.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace TessarkAO {

struct PosixCallTable {
  int (*stat)(const char* path, struct ::stat* st);
  int (*open)(const char* path, int flags, mode_t mode);
  ssize_t (*read)(int fd, void* buf, std::size_t count);
  int (*close)(int fd);
  int (*mkdir)(const char* path, mode_t mode);
  char* (*getenv)(const char* name);
  uid_t (*geteuid)();
  int (*getpwuid_r)(uid_t uid, struct passwd* pwd, char* buf, std::size_t size, struct passwd** result);
};

// The table in force (the C library's functions until a test changes one).
PosixCallTable& PosixCalls() noexcept;
// Puts every entry back to the C library's function.
void RestorePosixCalls() noexcept;

}  // namespace TessarkAO

#endif
