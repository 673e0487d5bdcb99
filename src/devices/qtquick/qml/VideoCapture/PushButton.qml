import QtQuick

View {
    id: button
    property string title: ""
    property color titleColor: "white"
    property string fontFamily: ""
    property real fontSize: 18
    property real unit: 1
    property real radius: height / 2
    // What a touch calls, by the controller's name for it.
    property string action: ""
    // Said instead of the title, where that is a sign.
    property string spokenTitle: title
    signal clicked

    backgroundColor: "#1b5e9e"
    implicitHeight: Math.max(44, fontSize * unit * 1.7 + 22)
    activeFocusOnTab: true

    Rectangle {
        anchors.fill: parent
        radius: button.radius
        color: touch.pressed ? Qt.darker(button.backgroundColor, 1.3) : button.backgroundColor
    }
    Rectangle {
        anchors { fill: parent; margins: -4 * button.unit }
        radius: button.radius + 4 * button.unit
        color: "transparent"
        border { color: "white"; width: 2.5 * button.unit }
        visible: button.activeFocus && button.focusShown
    }
    Text {
        id: words
        anchors { fill: parent; leftMargin: 12 * button.unit; rightMargin: 12 * button.unit }
        text: button.title
        textFormat: Text.PlainText
        color: button.titleColor
        font.family: button.fontFamily === "" ? Qt.application.font.family : button.fontFamily
        font.pixelSize: Math.max(8, button.fontSize * button.unit)
        font.weight: Font.DemiBold
        fontSizeMode: Text.Fit
        minimumPixelSize: 10
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
    }
    MouseArea {
        id: touch
        anchors.fill: parent
        onClicked: button.clicked()
    }

    // A ring around the button helps those who use keys, and only them.
    property bool focusShown: false
    onActiveFocusChanged: if (!activeFocus) focusShown = false
    Keys.onPressed: event => {
        focusShown = true
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            event.accepted = true
            if (!event.isAutoRepeat) button.clicked()
        }
    }
    Keys.onReleased: focusShown = true

    Accessible.role: Accessible.Button
    Accessible.name: spokenTitle
    Accessible.focusable: true
    Accessible.ignored: !visible
    Accessible.onPressAction: clicked()
}
