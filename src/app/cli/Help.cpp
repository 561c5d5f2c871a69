#include "app/cli/Help.h"

namespace quorvane::cli {

namespace {

const QString exitCodes =
    QStringLiteral("Çıkış kodları:\n"
                   "  0    tamamlandı\n"
                   "  1    çalıştırılamadı\n"
                   "  2    kullanım hatası\n"
                   "  3    oturum açılmamış\n"
                   "  4    bitti, ama bazı öğeler yüklenemedi veya bekletiliyor\n"
                   "  5    başka bir eşitleme çalışıyor\n"
                   "  6    ara verildi: Google veya ağ beklemek istiyor; her şey saklandı, "
                   "yeniden çalıştırın\n"
                   "  130  durduruldu (SIGINT/SIGTERM/SIGHUP)");

} // namespace

QString overview(const std::vector<CommandSpec>& commands) {
    QString text =
        QStringLiteral("Quorvane %1: Apple Fotoğraflar arşivini veya bir resim klasörünü "
                       "Google Photos'a yedekler.\n\n"
                       "Kullanım: quorvane-cli KOMUT [seçenekler]\n\n")
            .arg(QStringLiteral(QUORVANE_VERSION));
    for (const CommandSpec& command : commands)
        if (!command.hidden)
            text +=
                QStringLiteral("  %1  %2\n").arg(command.name.leftJustified(8), command.summary);
    return text + QStringLiteral("\nBir komutun seçenekleri: quorvane-cli KOMUT --help\n\n") +
           exitCodes;
}

QString helpOf(const CommandSpec& command) {
    const QString operand = command.operand.isEmpty() ? QString() : u' ' + command.operand;
    return QStringLiteral("Kullanım: quorvane-cli %1%2 [seçenekler]\n\n%3\n\n%4\n%5")
        .arg(command.name, operand, command.summary, optionTable(command.options), exitCodes);
}

} // namespace quorvane::cli
