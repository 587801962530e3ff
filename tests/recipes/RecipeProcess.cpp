// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

#include <QTest>

namespace {

// A recipe that takes longer hangs.
constexpr int patience = 60000;

} // namespace

RecipeProcess::RecipeProcess(const QString &recipe)
    : m_program(QStringLiteral(ZYBASE_RECIPES "/recipe-") + recipe)
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    for (const char *variable : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "LOCAL_SERVICES"}) {
        m_environment.remove(QLatin1String(variable));
        m_environment.remove(QString::fromLatin1(variable).toUpper());
    }
    setEnvironment(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // Memory that is gone holds nothing of use: a recipe that touches it dies.
    setEnvironment(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
}

RecipeProcess::~RecipeProcess()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

void RecipeProcess::setEnvironment(const QString &variable, const QString &value)
{
    m_environment.insert(variable, value);
}

bool RecipeProcess::start(const QStringList &arguments)
{
    QStringList command = m_sandbox.commandLine(QStringList {m_program} + arguments);
    const QString executable = command.takeFirst();
    m_process.setProcessEnvironment(m_environment);
    m_timer.start();
    m_process.start(executable, command);
    return m_process.waitForStarted(patience);
}

void RecipeProcess::write(const QString &line)
{
    m_process.write(line.toUtf8() + '\n');
}

bool RecipeProcess::waitForLine(const QString &line)
{
    return QTest::qWaitFor([&] { return lines().contains(line); }, patience);
}

int RecipeProcess::finish()
{
    const bool isOver = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
    m_duration = m_timer.elapsed();
    return isOver && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QStringList RecipeProcess::lines()
{
    m_output += m_process.readAllStandardOutput();
    QStringList lines = QString::fromUtf8(m_output).split(QLatin1Char('\n'));
    lines.removeLast(); // begins behind the last line's end
    return lines;
}
