#ifndef OTHER_TRACEOBJECT_H
#define OTHER_TRACEOBJECT_H

class TraceObject {
public:
    int getTraceLevel() { return 0; }
};

extern const TraceObject* g_traceObject;

#endif
