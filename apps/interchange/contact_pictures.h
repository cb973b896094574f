// The picture folder of the open device. A contact's picture is a file there that has the name which the contact is
// filed under. Pictures that change here join the change that is being recorded.
#pragma once

#include "interchange/card_values.h"

#include <string>

namespace zb::interchange
{
/// False for names that no file can have.
bool canNamePicture(const std::u16string &fileAs);
bool hasPicture(const std::u16string &fileAs);
/// Bytes of the picture; empty for none, and for one that can't be read or is larger than a card may have.
std::string readPicture(const std::u16string &fileAs);
/// Takes the place of the picture that the contact had. False when the device could not keep it; the old one is then
/// there still.
bool putPicture(const std::u16string &fileAs, const CardPicture &picture);
/// Gives the picture of a contact to its new name, unless that has one already.
void renamePicture(const std::u16string &from, const std::u16string &to);
} // namespace zb::interchange
