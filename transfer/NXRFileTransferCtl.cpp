#include "transfer/NXRFileTransferCtl.h"

#include "frame/ClassRegistry.h"
#include "frame/Conversions.h"
#include "frame/Trace.h"
#include "transfer/NXRFileTransferObject.h"

NXR_REGISTER_CLASS(NXRFileTransferCtl)

NXRFileTransferCtl::NXRFileTransferCtl(QWidget* parent) : nxr::ScriptableWidget(parent)
{
    NXR_TRACE(QStringLiteral("NXRFileTransferCtl"), QStringLiteral("UserControl_Initialize"),
              QStringLiteral("Entered"));
    // Nothing to see: the control takes no room and stays hidden when its page is shown.
    setFixedSize(0, 0);
    hide();
}

NXRFileTransferCtl::~NXRFileTransferCtl() = default;

bool NXRFileTransferCtl::CopyFile(const QString& vstr_FileServer, const QString& vstr_FilePath,
                                  const QString& vstr_FTPUserName, const QString& vstr_FTPPassword,
                                  const QString& vstr_NewFilename)
{
    const QString routine = QStringLiteral("CopyFile");
    NXR_TRACE(QStringLiteral("NXRFileTransferCtl"), routine,
              QStringLiteral("Entered, path=") + vstr_FilePath);
    bool ok = false;
    core().guard(routine, [&] {
        if (!m_object)
            m_object = new NXRFileTransferObject(this);
        ok = m_object->CopyFile(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword,
                                vstr_NewFilename);
        if (!ok) {
            QString description = m_object->LastErrorString();
            const QString prefix = QStringLiteral("Error in CopyFile: ");
            if (description.startsWith(prefix))
                description = description.mid(prefix.size());
            throw nxr::Failure(description);
        }
    });
    NXR_TRACE(QStringLiteral("NXRFileTransferCtl"), routine, QStringLiteral("Done"));
    return ok;
}
