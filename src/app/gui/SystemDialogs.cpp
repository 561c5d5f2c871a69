#include "app/gui/SystemDialogs.h"

#include "foundation/File.h"

#include <QFileDialog>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>

namespace quorvane {

SystemDialogs::~SystemDialogs() {
    for (const auto& dialog : open_)
        delete dialog.data();
}

void SystemDialogs::show(QWidget* dialog) {
    std::erase_if(open_, [](const QPointer<QWidget>& gone) { return gone.isNull(); });
    open_.emplace(dialog);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(QStringLiteral("Quorvane"));
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
}

void SystemDialogs::showAlert(const AlertText& text, std::function<void(bool)> answer) {
    auto* box = new QMessageBox(text.isWarning ? QMessageBox::Warning : QMessageBox::Information,
                                QStringLiteral("Quorvane"), text.message);
    if (!text.isWarning)
        box->setIconPixmap(QIcon(QStringLiteral(":/quorvane/AppIcon.svg")).pixmap(64, 64));
    box->setInformativeText(text.information);
    auto* primary = box->addButton(text.primaryButton, QMessageBox::AcceptRole);
    auto* secondary = box->addButton(text.secondaryButton, QMessageBox::RejectRole);
    box->setDefaultButton(primary);
    box->setEscapeButton(secondary);
    QObject::connect(box, &QMessageBox::finished, box, [box, primary, answer = std::move(answer)] {
        answer(box->clickedButton() == primary);
    });
    show(box);
}

void SystemDialogs::chooseLibrary(
    const std::filesystem::path& startAt,
    std::function<void(std::optional<std::filesystem::path>)> answer) {
    auto* dialog = new QFileDialog(nullptr, QString(), pathText(startAt));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    QObject::connect(dialog, &QFileDialog::finished, dialog,
                     [dialog, answer = std::move(answer)](int result) {
                         const QStringList chosen = dialog->selectedFiles();
                         if (result == QDialog::Accepted && !chosen.isEmpty())
                             answer(pathFrom(chosen.first()));
                         else
                             answer(std::nullopt);
                     });
    show(dialog);
    dialog->setWindowTitle(QStringLiteral("Fotoğraf Kitaplığını Seç"));
}

void SystemDialogs::chooseFile(const QString& title, const std::filesystem::path& suggested,
                               const QStringList& kinds,
                               std::function<void(std::filesystem::path, qsizetype kind)> answer) {
    auto* dialog = new QFileDialog(nullptr, QString(), pathText(suggested.parent_path()));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(kinds);
    dialog->setDefaultSuffix(pathText(suggested.extension()).mid(1));
    dialog->selectFile(pathText(suggested.filename()));
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [dialog, kinds, answer = std::move(answer)](const QString& file) {
                         answer(
                             pathFrom(file),
                             std::max<qsizetype>(0, kinds.indexOf(dialog->selectedNameFilter())));
                     });
    show(dialog);
    dialog->setWindowTitle(title);
}

} // namespace quorvane
