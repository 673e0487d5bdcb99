import QtQuick

View {
    id: picture
    property string imageSource: ""
    // The image that was shown before, while the picture is turned over: 0 that one, 1 this one.
    property string flipSource: ""
    property real flip: 1
    // Drawings in one colour take the tint.
    property bool tinted: false

    Image {
        readonly property string shown: picture.flip < 0.5 ? picture.flipSource : picture.imageSource

        anchors.fill: parent
        fillMode: Image.PreserveAspectFit
        source: shown === "" ? "" : picture.tinted ? shown + "?" + picture.tintColor : shown
        sourceSize: Qt.size(width, height)
        visible: shown !== ""
        transform: Rotation {
            origin.x: picture.width / 2
            origin.y: picture.height / 2
            axis { x: 0; y: 1; z: 0 }
            angle: picture.flip < 0.5 ? picture.flip * 180 : picture.flip * 180 - 180
        }
    }
}
