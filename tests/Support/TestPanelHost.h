// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

#include "Platform/PanelHost.h"

namespace tovi {

/// Panels without windows: frames and states as they were set.
class TestPanelHost final : public PanelHost
{
public:
    struct TestPanel final : Panel
    {
        explicit TestPanel(TestPanelHost *owner, std::unique_ptr<QWidget> widget)
            : host(owner)
            , content(std::move(widget))
        {
            host->open << this;
        }
        ~TestPanel() override { host->open.removeOne(this); }
        QRectF frame() const override { return currentFrame; }
        void setFrame(const QRectF &frame) override { currentFrame = frame; }
        void orderFrontRegardless() override { visible = true; }
        void makeKey() override { key = true; }
        void orderOut() override { visible = key = false; }
        bool isVisible() const override { return visible; }

        TestPanelHost *host;
        std::unique_ptr<QWidget> content;
        QRectF currentFrame;
        bool visible = false;
        bool key = false;
    };

    std::unique_ptr<Panel> makePanel(std::unique_ptr<QWidget> content) override
    {
        return std::make_unique<TestPanel>(this, std::move(content));
    }

    std::unique_ptr<Panel> makeOverlay(std::unique_ptr<QWidget> content) override
    {
        return makePanel(std::move(content));
    }
    bool isCompositing() const override { return true; }

    QList<TestPanel *> open;
};

} // namespace tovi
