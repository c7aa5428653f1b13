import QtQuick 2.15
import QtQuick.Layouts 1.15
import org.kde.plasma.plasmoid 2.0
import org.kde.plasma.core 2.0 as PlasmaCore
import org.kde.plasma.components 3.0 as PlasmaComponents3
import io.github.zonara.applet 1.0

// Zonara's tray line in the panel, for Plasma's tray, which draws no labels.
Item {
    id: root

    // A vertical panel has no room for a line: the globe, and the line in the tooltip.
    readonly property bool showsLine: zonara.line.length > 0
                                      && Plasmoid.formFactor !== PlasmaCore.Types.Vertical

    Plasmoid.preferredRepresentation: Plasmoid.compactRepresentation
    Plasmoid.toolTipMainText: "Zonara"
    Plasmoid.toolTipSubText: zonara.running ? zonara.cities
                                            : "Zonara is not running. Click to start it."
    Plasmoid.toolTipTextFormat: Text.PlainText

    ZonaraClient {
        id: zonara
    }

    function togglePanelAt(item, x, y) {
        const at = item.mapToGlobal(x, y);
        zonara.togglePanel(Math.round(at.x), Math.round(at.y));
    }

    // The keyboard, a global shortcut and screen readers activate the applet
    // as a whole. Zonara's panel is the popup: Plasma's own stays closed.
    Connections {
        target: Plasmoid.nativeInterface
        function onActivated() {
            Plasmoid.expanded = false;
            const item = Plasmoid.compactRepresentationItem;
            root.togglePanelAt(item, item.width / 2, item.height / 2);
        }
    }

    Plasmoid.compactRepresentation: MouseArea {
        id: compact

        readonly property bool vertical: Plasmoid.formFactor === PlasmaCore.Types.Vertical

        // The globe is square, as tall (or as wide) as the panel.
        Layout.minimumWidth: root.showsLine ? line.implicitWidth + PlasmaCore.Units.smallSpacing * 2
                                            : (vertical ? PlasmaCore.Units.iconSizes.small : height)
        Layout.minimumHeight: vertical ? width : PlasmaCore.Units.iconSizes.small
        Layout.preferredWidth: Layout.minimumWidth
        hoverEnabled: true
        // The same name as the tray item's, for screen readers.
        Accessible.role: Accessible.Button
        Accessible.name: root.showsLine ? "Zonara, " + zonara.line : "Zonara"
        Accessible.description: Plasmoid.toolTipSubText

        // The times moved on since the last read.
        onContainsMouseChanged: if (containsMouse) zonara.refreshCities()
        onClicked: root.togglePanelAt(compact, mouse.x, mouse.y)

        PlasmaCore.IconItem {
            anchors.fill: parent
            // Zonara's own, recoloured to the panel's text like the tray's icons.
            source: "io.github.zonara.Zonara-symbolic"
            active: compact.containsMouse
            visible: !root.showsLine
        }

        PlasmaComponents3.Label {
            id: line
            anchors.fill: parent
            text: zonara.line
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            visible: root.showsLine
        }
    }
}
