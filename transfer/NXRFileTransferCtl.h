#pragma once
// NXRFileTransferCtl: an invisible control that offers CopyFile to pages that can host only
// controls. It forwards to one NXRFileTransferObject made on first use; its string property
// protocol knows no keys besides "LastErrorString".

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"

class NXRFileTransferObject;

class NXR_EXPORT NXRFileTransferCtl : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Invisible control offering CopyFile to pages that can host only controls")

public:
    explicit NXRFileTransferCtl(QWidget* parent = nullptr);
    ~NXRFileTransferCtl() override;

    // As NXRFileTransferObject::CopyFile; a failure reads "Error in CopyFile: " + description.
    Q_INVOKABLE bool CopyFile(const QString& vstr_FileServer, const QString& vstr_FilePath,
                              const QString& vstr_FTPUserName, const QString& vstr_FTPPassword,
                              const QString& vstr_NewFilename);

    // The object CopyFile forwards to (null before the first call).
    NXRFileTransferObject* transferObject() const { return m_object; }

private:
    NXRFileTransferObject* m_object = nullptr;
};
