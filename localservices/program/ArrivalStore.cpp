// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ArrivalStore.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <sqlite3.h>

namespace {

constexpr int timeoutMs = 5000; // for the lock of another program that reads the file

// With these settings, readers do not wait for a writer, and writes do not wait for the disk.
constexpr const char *setUp = "PRAGMA journal_mode = WAL;"
                              "PRAGMA synchronous = NORMAL;"
                              "CREATE TABLE IF NOT EXISTS arrivals ("
                              " id INTEGER PRIMARY KEY AUTOINCREMENT,"
                              " kind TEXT NOT NULL,"
                              " time TEXT NOT NULL,"
                              " name TEXT NOT NULL,"
                              " detail TEXT NOT NULL,"
                              " method TEXT NOT NULL,"
                              " target TEXT NOT NULL,"
                              " headers TEXT NOT NULL,"
                              " body BLOB NOT NULL,"
                              " signature TEXT NOT NULL,"
                              " problems TEXT NOT NULL)";
constexpr const char *insertOne = "INSERT INTO arrivals (kind, time, name, detail, method, target, headers,"
                                  " body, signature, problems) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr const char *selectNewest =
    "SELECT id, kind, time, name, detail, method, target, headers, body, signature, problems FROM arrivals"
    " WHERE id > ?1 AND id < ?2 AND (kind = 'cleared'"
    " OR ((?3 IN ('', kind) OR (?3 = 'problem' AND (problems != '[]' OR signature LIKE 'bad%')))"
    " AND instr(lower(name || char(10) || detail || char(10) || target || char(10) || headers || char(10)"
    " || body || char(10) || signature || char(10) || problems), lower(?4)) > 0))"
    " ORDER BY id DESC LIMIT ?5";
// AUTOINCREMENT keeps the last id here when rows are removed.
constexpr const char *selectLastId = "SELECT seq FROM sqlite_sequence WHERE name = 'arrivals'";

// One execution of a statement. Values are bound and columns are read from left to right.
class Statement
{
public:
    Statement(sqlite3 *database, const char *text)
    {
        constexpr int wholeText = -1;
        sqlite3_prepare_v2(database, text, wholeText, &m_statement, nullptr);
    }
    ~Statement() { sqlite3_finalize(m_statement); }

    Statement &bind(qint64 number)
    {
        sqlite3_bind_int64(m_statement, ++m_bound, number);
        return *this;
    }
    Statement &bind(const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(m_statement, ++m_bound, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
        return *this;
    }
    Statement &bindBytes(const QByteArray &bytes)
    {
        // A null pointer would store NULL instead of an empty value.
        sqlite3_bind_blob(m_statement, ++m_bound, bytes.isEmpty() ? "" : bytes.constData(), bytes.size(),
                          SQLITE_TRANSIENT);
        return *this;
    }

    /** Moves to the next row. Returns false if there is none. */
    bool next()
    {
        m_read = -1;
        m_result = sqlite3_step(m_statement);
        return m_result == SQLITE_ROW;
    }
    bool isDone() const { return m_result == SQLITE_DONE; }

    qint64 number() { return sqlite3_column_int64(m_statement, ++m_read); }
    QByteArray bytes()
    {
        const auto *const data = static_cast<const char *>(sqlite3_column_blob(m_statement, ++m_read));
        return QByteArray(data, sqlite3_column_bytes(m_statement, m_read));
    }
    QString text() { return QString::fromUtf8(bytes()); }

private:
    Q_DISABLE_COPY(Statement)

    sqlite3_stmt *m_statement = nullptr;
    int m_bound = 0;
    int m_read = -1;
    int m_result = SQLITE_OK;
};

QString toText(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QJsonArray toArray(const QByteArray &text)
{
    return QJsonDocument::fromJson(text).array();
}

QString headersToText(const LocalServices::HttpServer::Request &request)
{
    QJsonArray headers;
    for (const QPair<QByteArray, QByteArray> &header : request.headers)
        headers << QJsonArray {QString::fromLatin1(header.first), QString::fromLatin1(header.second)};
    return toText(headers);
}

QList<QPair<QByteArray, QByteArray>> headersFromText(const QByteArray &text)
{
    QList<QPair<QByteArray, QByteArray>> headers;
    const QJsonArray pairs = toArray(text);
    for (const QJsonValue &pair : pairs)
        headers.append(
            {pair.toArray().at(0).toString().toLatin1(), pair.toArray().at(1).toString().toLatin1()});
    return headers;
}

Arrival readArrival(Statement &row)
{
    Arrival arrival;
    arrival.id = row.number();
    arrival.kind = row.text();
    arrival.time = row.text();
    arrival.name = row.text();
    arrival.detail = row.text();
    arrival.request.method = row.bytes();
    arrival.request.target = row.bytes();
    arrival.request.headers = headersFromText(row.bytes());
    arrival.request.body = row.bytes();
    arrival.signature = row.text();
    const QJsonArray problems = toArray(row.bytes());
    for (const QJsonValue &problem : problems)
        arrival.problems << problem.toString();
    return arrival;
}

} // namespace

void ArrivalStore::Close::operator()(sqlite3 *database) const
{
    sqlite3_close(database);
}

ArrivalStore::ArrivalStore(const QString &path)
{
    sqlite3 *database = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &database);
    m_database.reset(database);
    sqlite3_busy_timeout(database, timeoutMs);
    if (!run(setUp))
        m_error = QString::fromUtf8(sqlite3_errmsg(database));
}

ArrivalStore::~ArrivalStore() = default;

QString ArrivalStore::error() const
{
    return m_error;
}

bool ArrivalStore::run(const char *statement)
{
    return sqlite3_exec(m_database.get(), statement, nullptr, nullptr, nullptr) == SQLITE_OK;
}

qint64 ArrivalStore::insert(const Arrival &arrival)
{
    Statement statement(m_database.get(), insertOne);
    statement.bind(arrival.kind)
        .bind(arrival.time)
        .bind(arrival.name)
        .bind(arrival.detail)
        .bind(QString::fromLatin1(arrival.request.method))
        .bind(QString::fromLatin1(arrival.request.target))
        .bind(headersToText(arrival.request))
        .bindBytes(arrival.request.body)
        .bind(arrival.signature)
        .bind(toText(QJsonArray::fromStringList(arrival.problems)))
        .next();
    return statement.isDone() ? sqlite3_last_insert_rowid(m_database.get()) : 0;
}

qint64 ArrivalStore::add(const Arrival &arrival)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return insert(arrival);
}

bool ArrivalStore::clear()
{
    Arrival mark;
    mark.kind = Arrival::cleared();
    mark.time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool isCleared =
        run("BEGIN IMMEDIATE") && run("DELETE FROM arrivals") && insert(mark) > 0 && run("COMMIT");
    if (!isCleared)
        run("ROLLBACK");
    return isCleared;
}

QList<Arrival> ArrivalStore::find(const ArrivalQuery &query) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Statement rows(m_database.get(), selectNewest);
    rows.bind(query.after).bind(query.before).bind(query.kind).bind(query.text).bind(qint64(query.limit));
    QList<Arrival> arrivals;
    while (rows.next())
        arrivals.prepend(readArrival(rows));
    return arrivals;
}

qint64 ArrivalStore::lastId() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Statement row(m_database.get(), selectLastId);
    return row.next() ? row.number() : 0;
}
