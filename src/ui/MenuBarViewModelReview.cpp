#include "ui/MenuBarViewModel.h"

namespace quorvane {

/// It lists the whole library, so it is done when the person looks, in the background.
void MenuBarViewModel::reviewUndatedItems() {
    if (!session_)
        return;
    libraryTasks_.post([this, session = session_](const std::stop_token& stop) {
        try {
            auto items = reviewUndated(
                {session->run.db, session->run.library, session->metadata, session->root, s_.clock},
                stop);
            std::erase_if(items, [](const UndatedItem& item) { return item.isUndatable; });
            post([this, session, items = std::move(items)] {
                if (session != session_)
                    return;
                undated_ = items;
                Q_EMIT undatedChanged();
            });
        } catch (const Error& error) {
            s_.log.log(QStringLiteral("[MenuBarViewModel] Tarihsiz öğeler incelenemedi: ") +
                       error.localizedDescription());
        }
    });
}

void MenuBarViewModel::acceptUndatedItem(const QString& identifier) {
    acceptUndated(
        [&](const UndatedItem& item) { return item.record.assetLocalIdentifier == identifier; });
}

void MenuBarViewModel::acceptUndatedItems(const QString& kind) {
    acceptUndated(
        [&](const UndatedItem& item) { return rawValue(item.evidence.front().kind) == kind; });
}

/// The strongest evidence of those that have any and are wanted.
void MenuBarViewModel::acceptUndated(const std::function<bool(const UndatedItem&)>& isWanted) {
    std::vector<UndatedItem> accepted;
    std::erase_if(undated_, [&](const UndatedItem& item) {
        if (item.evidence.empty() || !isWanted(item))
            return false;
        accepted.push_back(item);
        return true;
    });
    if (accepted.empty() || !session_)
        return;
    Q_EMIT undatedChanged();
    stateTasks_.post(
        [this, session = session_, accepted = std::move(accepted)](const std::stop_token&) {
            try {
                for (const UndatedItem& item : accepted)
                    session->life.dateChosen(item.record, item.evidence.front().date());
            } catch (const DBError& error) {
                s_.log.log(QStringLiteral("[MenuBarViewModel] Tarih kabul edilemedi: ") +
                           error.localizedDescription());
            }
            post([this] { refreshState(); });
        });
}

} // namespace quorvane
