#include "frame/QtParamServer.h"

CQtParamServer::CQtParamServer() = default;

CQtParamServer& CQtParamServer::Object() {
  static CQtParamServer server;
  return server;
}

void CQtParamServer::Create() {}

void CQtParamServer::Clear() { distillery_.Clear(); }
