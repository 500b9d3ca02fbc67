// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>

class QLabel;

// The desktop's text styles, scaled from the application font so that the user's font
// settings scale the whole window: body text is 13 units, a caption 10, a heading 17.
namespace TextStyles {

double captionSize(const QFont &base);
QFont title2(const QFont &base); // semibold
// Caption size in the secondary text colour.
void applyCaption(QLabel *label);
void applySecondary(QLabel *label);
void applyTertiary(QLabel *label);

} // namespace TextStyles
