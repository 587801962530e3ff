// SPDX-License-Identifier: 0BSD

#pragma once

#include <QTemporaryFile>

/** An event catalogue with the event "open". An application has such a file in its resources. */
class SampleCatalogue
{
public:
    SampleCatalogue()
    {
        if (!m_file.open())
            qFatal("The event catalogue cannot be created");
        m_file.write(R"([{"event_key": "open", "event_name": "open_file", "event_category": "file",
                          "event_label": "pdf"}])");
        m_file.close();
    }

    QString path() const { return m_file.fileName(); }

private:
    QTemporaryFile m_file;
};
