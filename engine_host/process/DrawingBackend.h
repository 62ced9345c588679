#pragma once

class QByteArray;
class QString;

namespace DrawingBackend {

/// Has the page composed by the processor itself where there is no graphics card. Qt would do it through OpenGL, whose
/// emulation takes the better part of two cores while a score plays. A choice that the user made in QT_QUICK_BACKEND
/// stands. Nor is OpenGL loaded then: its emulation brings a compiler along, 36 MB. Has to run before the application
/// object exists.
void adapt();

/// @param devices the folder of the system's device files
bool hasGraphicsCard(const QString &devices);

/// The backend's name after adapt(), with the given name before it; empty for Qt's own choice.
QByteArray nameFor(bool hasGraphicsCard, const QByteArray &name);

/// How Qt gets at OpenGL on X11 after adapt(): not at all with the backend "software", unless the user chose.
QByteArray integrationFor(const QByteArray &backend, const QByteArray &integration);

} // namespace DrawingBackend
