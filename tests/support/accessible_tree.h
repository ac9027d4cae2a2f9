// Walks the tree that a window presents to assistive technology.
#pragma once

#include <QAccessible>
#include <QHash>
#include <QSet>
#include <QStringList>

namespace ql240 {

struct AccessibleTree {
    QHash<QString, QAccessibleInterface*> byName;
    QStringList nameless; // roles of interactive parts without a name

    explicit AccessibleTree(QObject* window) { walk(QAccessible::queryAccessibleInterface(window)); }

    // Lists are named by their label.
    static QString nameOf(QAccessibleInterface* part) {
        const auto labels = part->relations(QAccessible::Label);
        return (labels.isEmpty() ? part : labels.first().first)->text(QAccessible::Name).simplified();
    }

private:
    // Parts of lists and fields that are described by their parent.
    static bool speaksThroughParent(QAccessible::Role role) {
        static const QSet<int> roles{QAccessible::ScrollBar, QAccessible::Client,     QAccessible::Grip,
                                     QAccessible::Indicator, QAccessible::Whitespace, QAccessible::PopupMenu};
        return roles.contains(role);
    }
    void walk(QAccessibleInterface* part) {
        if (!part || part->state().invisible)
            return;
        const QString name = nameOf(part);
        if (!name.isEmpty())
            byName.insert(name, part);
        else if (!speaksThroughParent(part->role()))
            nameless << QStringLiteral("role %1 in \"%2\", %3")
                            .arg(part->role())
                            .arg(part->parent() ? nameOf(part->parent()) : QString(),
                                 part->object() ? QLatin1String(part->object()->metaObject()->className())
                                                : QLatin1String("no object"));
        for (int i = 0; i < part->childCount(); ++i)
            walk(part->child(i));
    }
};

} // namespace ql240
