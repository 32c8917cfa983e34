#include "ImgImplServiceMgr.h"

#include "ImgSvcAction.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcEffectMgr.h"
#include "ImgSvcOverlayMgr.h"
#include "ImgSvcResizeMgr.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcViewer.h"

ImgImplServiceMgr::ImgImplServiceMgr(QWidget *parent)
    : QObject(nullptr), viewerParent(parent)
{
}

ImgImplServiceMgr::~ImgImplServiceMgr()
{
    for (int id = SERVICE_VIEWER; id <= SERVICE_RESERVED; ++id) {
        QObject *service = services.value(id, nullptr);
        delete service;
    }
    services.clear();
}

void ImgImplServiceMgr::createService(int id)
{
    QObject *service = nullptr;
    switch (id) {
    case SERVICE_VIEWER:
        service = new ImgSvcViewer(nullptr, viewerParent, nullptr, 0);
        break;
    case SERVICE_CROP:
        service = new ImgSvcCropMgr(nullptr, nullptr, nullptr, 1);
        break;
    case SERVICE_RESIZE:
        service = new ImgSvcResizeMgr();
        break;
    case SERVICE_EFFECT:
        service = new ImgSvcEffectMgr();
        break;
    case SERVICE_OVERLAY:
        service = new ImgSvcOverlayMgr(nullptr, nullptr, 0);
        break;
    case SERVICE_SAVE:
        service = new ImgSvcSaveMgr(nullptr, nullptr, nullptr, 0);
        break;
    default:
        return;
    }
    if (service)
        services[id] = service;
}

QObject *ImgImplServiceMgr::getService(int id)
{
    if (id == SERVICE_COUNT)
        return nullptr;
    // The subscript leaves a null entry behind for ids no service belongs to.
    QObject *&entry = services[id];
    if (entry)
        return entry;
    createService(id);
    return services[id];
}

ImgSvcSaveMgr *ImgImplServiceMgr::getSaveMgr()
{
    return static_cast<ImgSvcSaveMgr *>(getService(SERVICE_SAVE));
}

void ImgImplServiceMgr::removeService(int id)
{
    auto it = services.find(id);
    if (it == services.end())
        return;
    delete it.value();
    it.value() = nullptr;
    services.erase(it);
}

int ImgImplServiceMgr::processCmdList(MMImageSource &source, MMImageSource &destination,
                                      std::list<MMCommand *> &commands)
{
    return ImgSvcAction::processCmdList(source, destination, commands);
}
