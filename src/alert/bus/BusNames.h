#pragma once
// The server's names on the message bus.

#include <QString>

namespace osprel::bus {
inline const QString kService = QStringLiteral("org.osprel.EmailFax");
inline const QString kFactoryPath = QStringLiteral("/");
inline const QString kFactoryInterface = QStringLiteral("org.osprel.EmailFax.Factory");
inline const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");
inline const QString kObjectPathPrefix = QStringLiteral("/clsAlertCls/");
} // namespace osprel::bus
