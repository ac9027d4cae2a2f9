// Web pages and a browser that record what they get. Pages answer only when the test says so.
#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include "platform/url_opener.h"
#include "platform/web_pages.h"

namespace ql240 {

struct FakeUrlOpener : UrlOpener {
    QStringList opened;
    bool openUrl(const QString& address) override {
        opened << address;
        return true;
    }
};

struct FakeWebPages : WebPages {
    // Of the page created last.
    WebPageEvents events;
    QPointer<QWidget> view;
    QStringList texts;
    QStringList scripts;
    int stops = 0;
    int made = 0;
    bool missing = false; // no page can be created

    struct Page : WebPage {
        explicit Page(FakeWebPages& pages, QWidget* parent) : owner(pages), own(new QWidget(parent)) {
            owner.view = own;
            ++owner.made;
        }
        ~Page() override { delete own; }

        QWidget* widget() override { return own; }
        void setHtml(const QString& text) override { owner.texts.append(text); }
        void stop() override { ++owner.stops; }
        void runJavaScript(const QString& script, std::function<void(const QVariant&)>) override {
            owner.scripts.append(script);
        }

        FakeWebPages& owner;
        QPointer<QWidget> own;
    };

    std::unique_ptr<WebPage> createPage(QWidget* parent, WebPageEvents pageEvents) override {
        if (missing)
            return nullptr;
        events = std::move(pageEvents);
        return std::make_unique<Page>(*this, parent);
    }

    QStringList takeScripts() { return std::exchange(scripts, {}); }
};

} // namespace ql240
