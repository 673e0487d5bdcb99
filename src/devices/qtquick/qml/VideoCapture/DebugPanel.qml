import QtQuick

Rectangle {
    default property alias lines: column.data

    width: column.width + 16
    height: column.height + 12
    radius: 6
    color: "#b0000000"

    Column {
        id: column
        x: 8
        y: 6
    }
}
