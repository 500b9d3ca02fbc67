// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontActivating.h"
#include "state/AppState.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <memory>

// Activation that always succeeds, remembering nothing: for views, whose concern is the store.
class InstantActivation : public FontActivating
{
public:
    bool activateFont(const QString &) override { return true; }
    bool deactivateFont(const QString &) override { return true; }
};

// Makes `folder` the store's one source, selected and scanned, without the background
// refresh that adding a source starts.
inline void showFolderAsSource(AppState &store, const QString &folder)
{
    const FolderSource source{QUuid::createUuid(), folder, QStringLiteral("Library")};
    store.setSourcesForTesting({source});
    store.setSidebarSelection(SidebarItem(source));
    auto service = std::make_shared<FileSystemService>();
    service->insertPreScannedRoot(folder);
    service->deepScan(folder);
    service->freeze();
    store.installLibrary(service, {});
}

// Answers the next question the window asks (a message box), once it shows, as a user
// does: a click on the button of that text, or Escape when the text is empty. What it
// asked, question and detail on two lines, lands in the returned string.
inline std::shared_ptr<QString> answerNextQuestion(const QString &button)
{
    auto asked = std::make_shared<QString>();
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, asked, button] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *box = qobject_cast<QMessageBox *>(widget);
            if (!box || !box->isVisible())
                continue;
            *asked = box->text() + u'\n' + box->informativeText();
            poll->stop();
            poll->deleteLater();
            if (button.isEmpty()) {
                QTest::keyClick(box, Qt::Key_Escape);
                return;
            }
            for (QAbstractButton *candidate : box->buttons()) {
                if (candidate->text() == button) {
                    QTest::mouseClick(candidate, Qt::LeftButton);
                    return;
                }
            }
            ADD_FAILURE() << "no button " << button.toStdString() << " in " << asked->toStdString();
            box->reject();
            return;
        }
    });
    poll->start();
    return asked;
}
