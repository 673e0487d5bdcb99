import QtQuick

QtObject {
    property list<Item> members
}
