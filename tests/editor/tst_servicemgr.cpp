#include "ImgImplServiceMgr.h"
#include "ImgSvcCropMgr.h"
#include "ImgSvcEffectMgr.h"
#include "ImgSvcOverlayMgr.h"
#include "ImgSvcResizeMgr.h"
#include "ImgSvcSaveMgr.h"
#include "ImgSvcViewer.h"

#include <QPointer>
#include <QtTest>

class TestServiceMgr : public QObject
{
    Q_OBJECT
private slots:
    void makesTheServiceOfEachId()
    {
        QWidget parent;
        ImgImplServiceMgr mgr(&parent);
        auto *viewer = qobject_cast<ImgSvcViewer *>(mgr.getService(SERVICE_VIEWER));
        QVERIFY(viewer);
        QCOMPARE(viewer->parentWidget(), &parent);
        auto *crop = qobject_cast<ImgSvcCropMgr *>(mgr.getService(SERVICE_CROP));
        QVERIFY(crop);
        QVERIFY(!crop->parent());
        QVERIFY(qobject_cast<ImgSvcResizeMgr *>(mgr.getService(SERVICE_RESIZE)));
        QVERIFY(qobject_cast<ImgSvcEffectMgr *>(mgr.getService(SERVICE_EFFECT)));
        QVERIFY(qobject_cast<ImgSvcOverlayMgr *>(mgr.getService(SERVICE_OVERLAY)));
        QCOMPARE(mgr.getSaveMgr(), qobject_cast<ImgSvcSaveMgr *>(mgr.getService(SERVICE_SAVE)));
        QVERIFY(mgr.getSaveMgr());
    }

    void idsWithoutServiceYieldNull()
    {
        ImgImplServiceMgr mgr(nullptr);
        QVERIFY(!mgr.getService(SERVICE_COUNT));
        QVERIFY(!mgr.hasEntry(SERVICE_COUNT));
        QVERIFY(!mgr.getService(SERVICE_RESERVED));
        QVERIFY(mgr.hasEntry(SERVICE_RESERVED));
        QVERIFY(!mgr.getService(-3));
        QVERIFY(!mgr.getService(42));
        mgr.removeService(SERVICE_RESIZE); // never requested: nothing happens
        QVERIFY(!mgr.hasEntry(SERVICE_RESIZE));
    }

    void serviceLivesUntilRemoved()
    {
        ImgImplServiceMgr mgr(nullptr);
        QPointer<QObject> first = mgr.getService(SERVICE_CROP);
        QCOMPARE(mgr.getService(SERVICE_CROP), first.data());
        mgr.removeService(SERVICE_CROP);
        QVERIFY(first.isNull());
        QVERIFY(!mgr.hasEntry(SERVICE_CROP));
        QObject *second = mgr.getService(SERVICE_CROP);
        QVERIFY(second);
    }

    void destructionDeletesExactlyThePresentServices()
    {
        QWidget parent;
        QPointer<QObject> viewer, crop, save;
        {
            ImgImplServiceMgr mgr(&parent);
            viewer = mgr.getService(SERVICE_VIEWER);
            crop = mgr.getService(SERVICE_CROP);
            save = mgr.getService(SERVICE_SAVE);
            mgr.getService(SERVICE_RESERVED); // a null entry must not trouble teardown
            mgr.removeService(SERVICE_SAVE);
            QVERIFY(save.isNull());
        }
        QVERIFY(viewer.isNull());
        QVERIFY(crop.isNull());
        QVERIFY(parent.children().isEmpty());
    }
};

QTEST_MAIN(TestServiceMgr)
#include "tst_servicemgr.moc"
