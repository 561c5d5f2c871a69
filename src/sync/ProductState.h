#pragma once

#include "sync/RunState.h"

namespace quorvane {

/// The one state of the whole product; whatever shows how things are draws this.
enum class ProductState {
    signedOut,
    libraryAway, ///< the chosen library is not where it was
    sessionLapsed,
    noLibrary,
    running,
    waiting,      ///< a run waits for the network or for Google
    waitingQuota, ///< a run waits for Google's next day
    failed,       ///< the latest run could not do its work
    stopped,      ///< by the person, and something is left
    neverBackedUp,
    itemsWaiting,
    heldBack, ///< nothing is left but what needs a review
    finished, ///< the latest run left nothing, and nothing new has come since
    upToDate,
};

/// What the state follows from.
struct ProductFacts {
    enum class Library { none, away, open };

    bool isSignedIn = false; ///< also with a session that Google ended
    Library library = Library::none;
    int pending = 0;
    int verified = 0;
    int failed = 0;
    int undated = 0;
    RunState run = {}; ///< the latest; none once something new has come after it

    int held() const { return failed + undated; }
};

/// Pure: everything that shows a state asks this.
ProductState productState(const ProductFacts& facts);

/// Lower-case words joined by "-", for programs.
QString rawValue(ProductState state);

/// What is so, in a few words for a person: the title of the window's state and the status line.
QString titleOf(ProductState state, const ProductFacts& facts);

/// "842 yeni öğe eşitlenmeyi bekliyor", or that the archive is safe.
QString pendingText(int pending);

/// What the latest run left: "3 öğe aktarılamadı (tekrar denenecek)".
QString untransferredText(int failed);
/// "12 öğe inceleme bekliyor"
QString reviewText(int held);

inline const QString stoppedText = QStringLiteral("Eşitleme kullanıcı tarafından durduruldu");
inline const QString albumFullText = QStringLiteral("Albüm sınırı (20.000) doldu!");

/// A count as a person reads it: 2.340.
QString groupedCount(qint64 count);

} // namespace quorvane
