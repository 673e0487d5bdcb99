import QtQuick

View {
    id: bar
    property real progress: 0

    tintColor: "#66bb6a"

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: "#a0000000"
    }
    Rectangle {
        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        width: Math.max(bar.height, bar.width * Math.min(1, bar.progress))
        radius: height / 2
        color: bar.tintColor
    }

    Accessible.role: Accessible.ProgressBar
    Accessible.name: screen.words.progress + " " + Math.round(progress * 100) + " %"
    Accessible.ignored: !visible
}
