import QtQuick

// The words over the oval or the card: as wide as they need, up to the width given.
View {
    id: pill
    property Label label
    property real room: 300
    property real unit: 1
    readonly property real padding: 14 * unit
    readonly property real free: room - 2 * padding

    width: label ? label.balancedWidth(free) + 2 * padding : 0
    height: label ? label.height + 1.2 * padding : 0

    Rectangle {
        anchors.fill: parent
        radius: Math.min(height / 2, 22 * pill.unit)
        color: pill.backgroundColor
        border.color: "#40ffffff"
        border.width: pill.unit
    }
}
