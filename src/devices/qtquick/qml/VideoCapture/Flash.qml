import QtQuick

// A frame around the screen that lights up and fades.
Item {
    property real strength: 0

    visible: strength > 0.01
    opacity: strength

    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border { color: "#a5d6a7"; width: Math.min(parent.width, parent.height) / 36 }
    }
}
