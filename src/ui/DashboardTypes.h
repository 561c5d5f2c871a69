#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

/// What the window shows, one value a card: texts ready to be drawn, in Turkish form.
namespace quorvane {

struct AccountView {
    Q_GADGET
    Q_PROPERTY(bool isSignedIn MEMBER isSignedIn)
    Q_PROPERTY(bool isLapsed MEMBER isLapsed)
    Q_PROPERTY(bool isSigningIn MEMBER isSigningIn)
    Q_PROPERTY(QString signInAddress MEMBER signInAddress)
    Q_PROPERTY(QString email MEMBER email)

  public:
    bool isSignedIn = false;
    bool isLapsed = false; ///< Google ended the session
    bool isSigningIn = false;
    QString signInAddress; ///< of the page that is to be agreed on
    QString email;
};

struct RouteView {
    Q_GADGET
    Q_PROPERTY(QString source MEMBER source)
    Q_PROPERTY(QString target MEMBER target)
    Q_PROPERTY(QString targetSymbol MEMBER targetSymbol)
    Q_PROPERTY(QString targetCount MEMBER targetCount)
    Q_PROPERTY(bool isTargetFull MEMBER isTargetFull)
    Q_PROPERTY(QString limitTitle MEMBER limitTitle)
    Q_PROPERTY(QString limitText MEMBER limitText)
    Q_PROPERTY(bool lacksAlbumScopes MEMBER lacksAlbumScopes)
    Q_PROPERTY(bool isLoadingAlbums MEMBER isLoadingAlbums)

  public:
    QString source;
    QString target;
    QString targetSymbol;
    QString targetCount; ///< of a chosen album, against its capacity
    bool isTargetFull = false;
    QString limitTitle; ///< empty while the album has room
    QString limitText;
    bool lacksAlbumScopes = false;
    bool isLoadingAlbums = false;
};

struct HeroView {
    Q_GADGET
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QString aside MEMBER aside)
    Q_PROPERTY(QString timeLeft MEMBER timeLeft)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(double fraction MEMBER fraction)
    Q_PROPERTY(QString percent MEMBER percent)
    Q_PROPERTY(QString ringName MEMBER ringName)
    Q_PROPERTY(QString safety MEMBER safety)
    Q_PROPERTY(QString leftOut MEMBER leftOut)
    Q_PROPERTY(QString startTitle MEMBER startTitle)
    Q_PROPERTY(QString startSymbol MEMBER startSymbol)
    Q_PROPERTY(bool canStop MEMBER canStop)
    Q_PROPERTY(bool canTryNow MEMBER canTryNow)
    Q_PROPERTY(QString quarantine MEMBER quarantine)

  public:
    QString tone; ///< "neutral", "good", "done", "syncing", "waiting", "warning", "error"
    QString title;
    QString subtitle;
    QString note;     ///< the third line
    QString aside;    ///< beside it while a run is under way: the speed, or that it waits
    QString timeLeft; ///< of a run; empty while that is not known
    QString symbol;
    double fraction = 0; ///< 0...1
    QString percent;     ///< "%5"
    QString ringName;    ///< what a screen reader says of the ring
    QString safety;      ///< what became of the items, while a run waits
    QString leftOut;     ///< what of the library no run can send, while none waits
    QString startTitle;  ///< empty: there is nothing to start
    QString startSymbol;
    bool canStop = false;
    bool canTryNow = false;
    QString quarantine; ///< empty when nothing waits for a review
};

/// The library that is chosen, and whether it is there.
struct LibraryView {
    Q_GADGET
    Q_PROPERTY(bool isAway MEMBER isAway)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(QString since MEMBER since)

  public:
    bool isAway = false;
    QString name; ///< empty before any was chosen
    QString kind; ///< with the number of its items
    QString path;
    QString since; ///< while it is away: since when, and what waits
};

struct InspectorView {
    Q_GADGET
    Q_PROPERTY(bool isActive MEMBER isActive)
    Q_PROPERTY(QString currentSpeed MEMBER currentSpeed)
    Q_PROPERTY(QString peakSpeed MEMBER peakSpeed)
    Q_PROPERTY(QString latency MEMBER latency)
    Q_PROPERTY(QString target MEMBER target)
    Q_PROPERTY(QString pending MEMBER pending)
    Q_PROPERTY(QString state MEMBER state)

  public:
    bool isActive = false;
    QString currentSpeed;
    QString peakSpeed;
    QString latency;
    QString target;
    QString pending;
    QString state;
};

/// A line of the table below a question.
struct AlertRow {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QString count MEMBER count)

  public:
    QString title;
    QString note;
    QString count;
};

/// A question over the whole window. The first button is the one that Return presses.
struct AlertView {
    Q_GADGET
    Q_PROPERTY(bool isShown MEMBER isShown)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QStringList buttons MEMBER buttons)
    Q_PROPERTY(int escape MEMBER escape)
    Q_PROPERTY(QString rowsTitle MEMBER rowsTitle)
    Q_PROPERTY(QString rowsSum MEMBER rowsSum)
    Q_PROPERTY(QVariantList rows MEMBER rows)

  public:
    bool isShown = false;
    QString title;
    QString text;
    QString tone; ///< "info", "warning", "danger"
    QStringList buttons = {};
    QString symbol = {}; ///< empty: the tone's
    int escape = -1;     ///< the button that Escape presses, from the end when negative
    QString rowsTitle = {};
    QString rowsSum = {};
    QVariantList rows = {}; ///< `AlertRow`; empty: no table
};

} // namespace quorvane
