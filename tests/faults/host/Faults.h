// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

/**
 * Makes one system call of this process fail. The program defines the functions of the C library that make
 * system calls, so Qt, QuaZip, log4qt and ZyBase call these first. Calls inside the C library itself, such as
 * those of fopen() and getaddrinfo(), are not counted and do not fail.
 */
namespace Faults {

/** What a function belongs to. */
enum class Kind {
    Open, ///< open(), opendir()
    Read, ///< read() from a file
    Write, ///< write() to a file, sendfile()
    Receive, ///< recv() and read() from a socket
    Send, ///< send() and write() to a socket
    Close,
    Sync, ///< fsync(), fdatasync()
    Seek, ///< lseek()
    Truncate, ///< ftruncate()
    Rename, ///< rename(), link()
    MakeDirectory, ///< mkdir()
    Remove, ///< unlink(), rmdir()
    Stat, ///< statx()
    Permissions, ///< chmod(), fchmod()
    Lock, ///< flock()
    Descriptor, ///< pipe2(), eventfd(), dup()
    Socket, ///< socket()
    Connect, ///< connect()
    Poll, ///< poll(), ppoll(), select()
    Thread, ///< pthread_create()
    Process, ///< fork(), clone()
    Any ///< each of them, except Poll
};

/** What happens instead of the call. Every other value is an errno, with which the call fails. */
enum Action {
    Shorten = -1, ///< transfers half of the bytes
    Kill = -2, ///< ends the process with SIGKILL before the call
    Tear = -3 ///< transfers half of the bytes, then ends the process with SIGKILL
};

/**
 * Counts the calls of a kind in this process from now on. Shorten and Tear count only those that transfer
 * two bytes or more.
 *
 * @param nth the call that fails; the first is 1, and 0 only counts
 * @param lasts makes all later calls fail, too
 */
void arm(Kind kind, int nth, int action, bool lasts);

/** Ends the counting. No call fails any more. */
void disarm();

/** Returns the number of calls from arm() to disarm(). */
int callCount();

/** Returns the name of the first function that failed, or an empty string. */
const char *failedFunction();

/** Returns true if the process tried to send a signal to all processes. It is never sent. */
bool hasSignalledAll();

} // namespace Faults
