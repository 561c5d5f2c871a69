#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

/// What the window shows, one value a card: texts ready to be drawn, in Turkish form.
namespace quorvane {

struct AccountView {
    Q_GADGET
    Q_PROPERTY(bool isSignedIn MEMBER isSignedIn)
    Q_PROPERTY(bool isSigningIn MEMBER isSigningIn)
    Q_PROPERTY(QString signInAddress MEMBER signInAddress)
    Q_PROPERTY(QString email MEMBER email)

  public:
    bool isSignedIn = false;
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
    Q_PROPERTY(QString kind MEMBER kind)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString note MEMBER note)
    Q_PROPERTY(QString speed MEMBER speed)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(double fraction MEMBER fraction)
    Q_PROPERTY(QString percent MEMBER percent)
    Q_PROPERTY(QString ringName MEMBER ringName)
    Q_PROPERTY(QString startTitle MEMBER startTitle)
    Q_PROPERTY(QString quarantine MEMBER quarantine)

  public:
    QString kind; ///< "idle", "pending", "syncing", "done", "warning"
    QString title;
    QString subtitle;
    QString note; ///< the third line
    QString speed;
    QString symbol;
    double fraction = 0; ///< 0...1
    QString percent;     ///< "%5"
    QString ringName;    ///< what a screen reader says of the ring
    QString startTitle;
    QString quarantine; ///< empty when nothing waits for a review
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

/// A question over the whole window. The first button is the one that Return presses, the last the
/// one that Escape presses.
struct AlertView {
    Q_GADGET
    Q_PROPERTY(bool isShown MEMBER isShown)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QStringList buttons MEMBER buttons)

  public:
    bool isShown = false;
    QString title;
    QString text;
    QString tone; ///< "info", "warning", "danger"
    QStringList buttons;
};

} // namespace quorvane
