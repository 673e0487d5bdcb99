import QtQuick

Text {
    id: label
    property bool hidden: false
    property real alpha: 1
    property color backgroundColor: "transparent"
    property color tintColor: "white"
    property color textColor: "white"
    property string fontFamily: ""
    property real fontSize: 17
    // Pixels of the screen to a point of the font.
    property real unit: 1
    // A screen reader says each new text at once.
    property bool announced: false

    // Of the widest line, however narrow the label is at present.
    readonly property real naturalWidth: Math.ceil(unwrapped.implicitWidth) + 1

    Text {
        id: unwrapped
        visible: false
        text: label.text
        textFormat: label.textFormat
        font: label.font
    }

    visible: !hidden && alpha >= 0.01
    opacity: alpha
    color: textColor
    font.family: fontFamily === "" ? Qt.application.font.family : fontFamily
    font.pixelSize: Math.max(8, fontSize * unit)
    wrapMode: Text.Wrap
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !visible || text === ""
}
