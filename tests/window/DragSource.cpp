// Another program for the tests to drag from: a small window in the lower right corner of their
// display from which the addresses given as arguments can be dragged.

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

#include <cstdio>

namespace {

class Source final : public QWidget {
public:
    explicit Source(QList<QUrl> draggedItems) : items(std::move(draggedItems)) {
        setWindowFlag(Qt::X11BypassWindowManagerHint);
        setGeometry(1100, 750, 100, 100);
        setWindowTitle(QStringLiteral("Drag source"));
    }

protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        if ((event->buttons() & Qt::LeftButton) == 0) {
            return;
        }
        auto* const drag = new QDrag(this); // deletes itself
        auto* const dragged = new QMimeData;
        dragged->setUrls(items);
        drag->setMimeData(dragged);
        const Qt::DropAction done = drag->exec(Qt::CopyAction);
        std::printf("%s\n", done == Qt::CopyAction ? "taken" : "refused");
        std::fflush(stdout);
    }

private:
    QList<QUrl> items;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QList<QUrl> items;
    for (const QString& address : QApplication::arguments().mid(1)) {
        items.append(QUrl(address));
    }
    Source source(items);
    source.show();
    return QApplication::exec();
}
