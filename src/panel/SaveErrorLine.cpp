#include "SaveErrorLine.h"

#include "AppStyle.h"
#include "ZoneStore.h"

SaveErrorLine::SaveErrorLine(const ZoneStore &store, QWidget *parent)
    : TextLine(AppStyle::uiFont(11), Tone::secondary, parent)
{
    const QString unsaved =
        QStringLiteral("Your changes could not be saved. Zonara keeps them until it can.");
    setObjectName(QStringLiteral("save-error"));
    setText(unsaved);
    setToolTip(unsaved);
    setElides(true);
    connect(&store, &ZoneStore::saveFailedChanged, this,
            [this, &store] { setVisible(store.saveFailed()); });
    setVisible(store.saveFailed());
}
