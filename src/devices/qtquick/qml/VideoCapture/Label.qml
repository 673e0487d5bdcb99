import QtQuick

Text {
    id: label
    property bool hidden: false
    property real alpha: 1
    property color backgroundColor: "transparent"
    property color tintColor: "white"
    property color textColor: "white"
    // The text without the marks in it.
    property string words: text
    property string fontFamily: ""
    property real fontSize: 17
    // Pixels of the screen to a point of the font.
    property real unit: 1
    // A screen reader says each new text at once.
    property bool announced: false

    // Times the size of the letters.
    property real shrink: 1

    // Of the widest line in letters of full size, however narrow the label is at present.
    readonly property real naturalWidth: Math.ceil(unwrapped.implicitWidth) + 1

    // Rather smaller letters than a second line, down to `least`; those who want large letters keep them.
    function shrinkFor(free, least) {
        return screen.textScale > 1 ? 1 : Math.max(least, Math.min(1, 0.98 * free / naturalWidth))
    }
    // Lines of about the same length, no word alone in the last.
    function balancedWidth(free) {
        const natural = naturalWidth * shrink
        if (natural > free) return Math.min(free, 1.15 * natural / Math.ceil(natural / free))
        return shrink < 1 ? free : natural
    }

    Text {
        id: unwrapped
        visible: false
        text: label.text
        textFormat: label.textFormat
        font { family: label.font.family; weight: label.font.weight; pixelSize: Math.max(8, label.fontSize * label.unit) }
    }

    visible: !hidden && alpha >= 0.01
    opacity: alpha
    color: textColor
    font.family: fontFamily === "" ? Qt.application.font.family : fontFamily
    font.pixelSize: Math.max(8, fontSize * unit * shrink)
    wrapMode: Text.Wrap
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: words
    Accessible.ignored: !visible || text === ""
}
