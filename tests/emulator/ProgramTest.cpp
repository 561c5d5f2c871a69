#include "support/TemporaryFolder.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>
#include <httplib.h>

namespace quorvane::test {

namespace {

using namespace Qt::StringLiterals;

QJsonObject objectIn(const QByteArray& json) {
    return QJsonDocument::fromJson(json).object();
}

const QString program = pathText(programFolder() / "quorvane-emulator");

TEST(ProgramTest, servesUntilItIsToldToEndAndReports) {
    const TemporaryFolder folder;
    QProcess process;
    process.start(program, {u"--port-file"_s, pathText(folder / "port"), u"--report"_s,
                            pathText(folder / "report.json"), u"--seed-album"_s, u"A:B:12"_s,
                            u"--fault"_s, u"albumsList:1+:503"_s});
    ASSERT_TRUE(process.waitForReadyRead(10'000));
    const QByteArray line = process.readLine();
    ASSERT_TRUE(line.startsWith("http://127.0.0.1:"));
    const int port = line.mid(17).trimmed().toInt();
    EXPECT_EQ(readFile(folder / "port").trimmed().toInt(), port);

    httplib::Client client("127.0.0.1", port);
    EXPECT_EQ(client.Get("/v1/albums")->status, 503);
    const QJsonObject running =
        objectIn(QByteArray::fromStdString(client.Get("/_quorvane/report")->body));
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(10'000));
    EXPECT_EQ(process.exitCode(), 0);
    const QJsonObject report = objectIn(readFile(folder / "report.json"));
    EXPECT_EQ(report[u"requests"_s][u"albumsList"_s].toInt(), 1);
    EXPECT_EQ(report[u"albums"_s][0][u"title"_s].toString(), u"A:B"_s);
    EXPECT_EQ(report[u"albums"_s][0][u"itemCount"_s].toInt(), 12);
    EXPECT_EQ(running[u"albums"_s], report[u"albums"_s]);
}

} // namespace

} // namespace quorvane::test
