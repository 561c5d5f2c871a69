#pragma once

#include "foundation/Guarded.h"
#include "library/DeletionConfirmation.h"

#include <QObject>
#include <QPointer>

#include <optional>

namespace quorvane {

/// The question before originals go to the Trash. It holds up nobody: whoever asks is told no at
/// once, and the question stays open until the person answers it. What they agree to is what they
/// were asked, once; for anything else they are asked anew. Main thread but for `confirmDeletion`.
class TrashQuestion final : public QObject, public DeletionConfirmation {
    Q_OBJECT

  public:
    bool confirmDeletion(const DeletionQuestion& question) override;

    /// None while nothing is asked.
    const std::optional<DeletionQuestion>& open() const { return open_; }
    /// The next one who asks the same is told yes.
    void agree();
    /// The same is not asked again, and nothing is open.
    void keep();
    /// Nothing is open, and whoever asks next asks anew.
    void forget();

  Q_SIGNALS:
    void asked();
    void changed();

  private:
    /// What the person said last, of what they were asked.
    struct Answers {
        std::optional<DeletionQuestion> agreed;
        std::optional<DeletionQuestion> kept;
    };

    void ask(const DeletionQuestion& question);
    void close(Answers answers);

    const QPointer<TrashQuestion> self_{this};
    std::optional<DeletionQuestion> open_;
    Guarded<Answers> answers_;
};

/// "412 Öğe Çöp'e Taşınsın mı?"
QString trashTitle(const DeletionQuestion& question);
/// How much goes, and where; not what stays.
QString trashText(const DeletionQuestion& question);

} // namespace quorvane
