import QtQuick

// A corner of the finder around the oval.
View {
    id: bezel
    property Item around
    property bool atRight: false
    property bool atBottom: false
    property real unit: 1
    readonly property real reach: 10 * unit

    width: 30 * unit
    height: 30 * unit
    x: around ? (atRight ? around.x + around.width + reach - width : around.x - reach) : 0
    y: around ? (atBottom ? around.y + around.height + reach - height : around.y - reach) : 0

    Rectangle {
        width: parent.width
        height: 3 * bezel.unit
        radius: height / 2
        y: bezel.atBottom ? parent.height - height : 0
        color: "#c0ffffff"
    }
    Rectangle {
        width: 3 * bezel.unit
        height: parent.height
        radius: width / 2
        x: bezel.atRight ? parent.width - width : 0
        color: "#c0ffffff"
    }
}
