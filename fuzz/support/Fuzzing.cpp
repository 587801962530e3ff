// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Fuzzing.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

QByteArray takeFront(QByteArray *bytes, int size)
{
    const QByteArray front = bytes->left(size);
    bytes->remove(0, size);
    return front;
}

} // namespace

void fuzzFailure(const char *condition, const char *file, int line)
{
    std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
    std::abort();
}

void dropMessages()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

std::uint8_t Input::takeByte()
{
    const QByteArray byte = takeFront(&m_rest, 1);
    return byte.isEmpty() ? 0 : std::uint8_t(byte.at(0));
}

std::int64_t Input::takeNumber()
{
    const QByteArray bytes = takeFront(&m_rest, sizeof(std::int64_t));
    std::int64_t number = 0;
    std::memcpy(&number, bytes.constData(), std::size_t(bytes.size()));
    return number;
}

QByteArray Input::takeLine()
{
    const int end = m_rest.indexOf('\n');
    if (end < 0)
        return takeRest();
    const QByteArray line = takeFront(&m_rest, end);
    m_rest.remove(0, 1);
    return line;
}

QByteArray Input::takeRest()
{
    return std::exchange(m_rest, QByteArray());
}
