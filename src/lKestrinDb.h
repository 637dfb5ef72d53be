// lKestrinDb, the parameter data base of a test-bench analysis suite for rotating machinery. This
// header brings the whole public surface; hosts include nothing else.
//
//   CParameterLake::Lake().read(L"gearbox.par");   // the file
//   CQtParamInstance params;                       // the handle
//   if (params.ReadTablesFromCandidateLake()) {
//     params.ChannelName(3);                       // and the answers
//   }
#pragma once

#include "controls/ClavisComboBox.h"
#include "controls/ClavisListCtrl.h"
#include "controls/KestrinCtrl.h"
#include "controls/KestrinDialog.h"
#include "controls/KestrinRangeSelectCtrl.h"
#include "frame/DialogTemplates.h"
#include "frame/ModuleStrings.h"
#include "frame/ParameterCheck.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "frame/QtParamServer.h"
#include "frame/TableCatalogue.h"
#include "frame/Version.h"
#include "interfaces/Clavis.h"
#include "interfaces/ComboBoxX.h"
#include "interfaces/Dialog3d.h"
#include "interfaces/File.h"
#include "interfaces/MeasuringUnit.h"
#include "interfaces/PrWin.h"
#include "interfaces/ResourceSea.h"
#include "interfaces/Text.h"
#include "interfaces/TextView.h"
#include "interfaces/Wnd.h"
#include "interfaces/XListCtrl.h"
#include "keys/IndexRecords.h"
#include "keys/QIdx8Set.h"
#include "lake/Lake.h"
#include "queries/Grex.h"
#include "spec/OrderInterpreter.h"
#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "tables/QParamBaseTable.h"
#include "tables/QTableManager.h"
#include "tables/RowText.h"
#include "tables/TableFile.h"
#include "trigger/TriggerStore.h"
