// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/** Runs a target once. Each target defines it. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes);

/** Prints the condition and aborts, which is a finding, if the condition is false. */
#define FUZZ_VERIFY(condition)                                                                               \
    ((condition) ? static_cast<void>(0) : fuzzFailure(#condition, __FILE__, __LINE__))

[[noreturn]] void fuzzFailure(const char *condition, const char *file, int line);

/** Drops all messages of Qt. Call it once: writing them would take most of the time. */
void dropMessages();

/** Reads the values of a target's arguments from its input. An exhausted input gives zeros. */
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t sizeBytes)
        : m_rest(reinterpret_cast<const char *>(data), int(sizeBytes))
    {
    }

    std::uint8_t takeByte();
    std::int64_t takeNumber();

    /** Returns the bytes before the next line feed, which is skipped. */
    QByteArray takeLine();

    /** Returns all bytes that are left. */
    QByteArray takeRest();

private:
    QByteArray m_rest;
};
