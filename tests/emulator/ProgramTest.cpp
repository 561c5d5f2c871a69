#include "EmulatorWorld.h"

#include "support/TemporaryFolder.h"

#include <QProcess>

namespace quorvane::test {

namespace {

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
    EXPECT_EQ(statusOf(client.Get("/v1/albums")), 503);
    const QJsonObject running = json(client.Get("/_quorvane/report"));
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(10'000));
    EXPECT_EQ(process.exitCode(), 0);
    const QJsonObject report = QJsonDocument::fromJson(readFile(folder / "report.json")).object();
    EXPECT_EQ(report[u"requests"_s][u"albumsList"_s].toInt(), 1);
    EXPECT_EQ(report[u"albums"_s][0][u"title"_s].toString(), u"A:B"_s);
    EXPECT_EQ(report[u"albums"_s][0][u"itemCount"_s].toInt(), 12);
    EXPECT_EQ(running[u"albums"_s], report[u"albums"_s]);
}

} // namespace

} // namespace quorvane::test
