import QtQuick

// One of several wishes for a place; the program raises that of the one it wants to 1000.
QtObject {
    property real priority: 250
    readonly property bool wins: priority >= 1000
}
