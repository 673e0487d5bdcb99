import QtQuick

// What every view can do; the program changes the first four properties.
Item {
    property bool hidden: false
    property real alpha: 1
    property color backgroundColor: "transparent"
    property color tintColor: "white"

    visible: !hidden && alpha >= 0.01
    opacity: alpha
}
