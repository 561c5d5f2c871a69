#pragma once

#include "ui/Dashboard.h"

#include <qqml.h>

/// Makes the types below the window known to QML, which cannot name them itself.
namespace quorvane {

struct DashboardForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::Dashboard)
    QML_NAMED_ELEMENT(Dashboard)
    QML_UNCREATABLE("made by the program")
};

struct TransferListModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::TransferListModel)
    QML_NAMED_ELEMENT(TransferListModel)
    QML_UNCREATABLE("made by the program")
};

struct SessionCheckModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::SessionCheckModel)
    QML_NAMED_ELEMENT(SessionCheckModel)
    QML_UNCREATABLE("made by the program")
};

struct AutoSyncForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::AutoSync)
    QML_NAMED_ELEMENT(AutoSync)
    QML_UNCREATABLE("made by the program")
};

struct LibrarySettingsForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::LibrarySettings)
    QML_NAMED_ELEMENT(LibrarySettings)
    QML_UNCREATABLE("made by the program")
};

struct ReviewModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::ReviewModel)
    QML_NAMED_ELEMENT(ReviewModel)
    QML_UNCREATABLE("made by the program")
};

struct HeldListModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::HeldListModel)
    QML_NAMED_ELEMENT(HeldListModel)
    QML_UNCREATABLE("made by the program")
};

struct InspectorModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::InspectorModel)
    QML_NAMED_ELEMENT(InspectorModel)
    QML_UNCREATABLE("made by the program")
};

struct RunReportModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::RunReportModel)
    QML_NAMED_ELEMENT(RunReportModel)
    QML_UNCREATABLE("made by the program")
};

struct MenuModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::MenuModel)
    QML_NAMED_ELEMENT(MenuModel)
    QML_UNCREATABLE("made by the program")
};

struct LogListModelForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::LogListModel)
    QML_NAMED_ELEMENT(LogListModel)
    QML_UNCREATABLE("made by the program")
};

struct AccountViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::AccountView)
    QML_VALUE_TYPE(accountView)
};

struct RouteViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::RouteView)
    QML_VALUE_TYPE(routeView)
};

struct HeroViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::HeroView)
    QML_VALUE_TYPE(heroView)
};

struct LibraryViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::LibraryView)
    QML_VALUE_TYPE(libraryView)
};

struct InspectorViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::InspectorView)
    QML_VALUE_TYPE(inspectorView)
};

struct AlertViewForQml {
    Q_GADGET
    QML_FOREIGN(quorvane::AlertView)
    QML_VALUE_TYPE(alertView)
};

} // namespace quorvane
