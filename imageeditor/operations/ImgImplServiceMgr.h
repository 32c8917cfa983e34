#pragma once
#include <QMap>
#include <QObject>
#include <list>

class MMCommand;
class MMImageSource;
class ImgSvcSaveMgr;
class QWidget;

enum ImgImplServiceId {
    SERVICE_VIEWER = 0,
    SERVICE_CROP = 1,
    SERVICE_RESIZE = 2,
    SERVICE_EFFECT = 3,
    SERVICE_OVERLAY = 4,
    SERVICE_SAVE = 5,
    SERVICE_RESERVED = 6,
    SERVICE_COUNT = 7,
};

// The one place the editor gets image services from. Services are made on
// first request, kept until removed, and deleted with the manager.
class ImgImplServiceMgr : public QObject
{
    Q_OBJECT
public:
    explicit ImgImplServiceMgr(QWidget *viewerParent);
    ~ImgImplServiceMgr() override;

    QObject *getService(int id);
    ImgSvcSaveMgr *getSaveMgr();
    void removeService(int id);
    int processCmdList(MMImageSource &source, MMImageSource &destination, std::list<MMCommand *> &commands);

    // For tests: whether the map has an entry (null or not) for id.
    bool hasEntry(int id) const { return services.contains(id); }

private:
    void createService(int id);

    QMap<int, QObject *> services;
    QWidget *viewerParent;
};
