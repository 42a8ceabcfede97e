// A register of objects, to find those that are never destroyed.
#pragma once

#include <roots/Export.h>
#include <roots/containers/BryArray.h>
#include <roots/text/BryString.h>

// Classes report the construction and the destruction of their objects, by class name and address. Objects can be told
// apart by the activity that they were created under: whoever begins one pushes its context initiator, any pointer, and
// pops it at the end. Addresses and initiators are compared, never looked into.
//
// A record is made for each construction and stays when its object is destroyed, only marked. Searches go through all
// records in the order of the reports: a destruction costs time in proportion to their number. What does not fit
// (unknown objects, initiators that do not match, empty tables) is ignored. For one thread.
class KELROOTS_API BryDebugInterfaces {
public:
    BryDebugInterfaces& operator=(const BryDebugInterfaces&) { return *this; }

    static void objectConstructed(const BryString& className, void* object);

    // Marks the first living record of that object and class name.
    static void objectDestroied(const BryString& className, void* object);

    // The constructions that follow belong to initiator, until it ends or another one is pushed.
    static void setCurrentContextInitiator(void* initiator);

    // Pops initiator; only where it is on top.
    static void contextInitiatorEnd(void* initiator);

    // Forgets the records that belong to initiator, or all of them where it is null. The initiators stay.
    static void clearAllDebugInfo(void* initiator);

    // All records, those of destroyed objects included.
    static int entriesNumber();

    // Hands a report on the objects that are still alive, of one initiator or of all (null), to BryOutputDebugString,
    // line by line.
    static void showResults(void* initiator);

    // That report, for callers who want to see it. Empty where no object is alive; otherwise
    // "\n Coclasses not destructed:" and for each object "\n 4 [2] 00c0ffee ClassName": the place of its record among
    // all records, its place among those asked for, destroyed ones included, address and class name.
    static BryString getResults(void* initiator);

private:
    struct DebugInfo {
        void* m_pContextInitiator = nullptr;
        BryString m_ClassName;
        void* m_pObject = nullptr;
        int m_bDestroyed = 0;
    };

    static int getIndexAt(BryString& className, void* object);

    // Calls line with each line of the report.
    template <class Line>
    static void forEachResult(void* initiator, Line line);

    using Initiators = BryArray<void*, BryArrayObjectCopyReallocator<void*>, BryArrayMemoryController<void*>>;
    using Records = BryArray<DebugInfo, BryArrayObjectCopyReallocator<DebugInfo>, BryArrayMemoryController<DebugInfo>>;

    // Empties the tables when the library is unloaded.
    struct CleanUp {
        ~CleanUp();
    };

    static Initiators& m_ContextInitiators;
    static Records& m_Info;
    static CleanUp m_cleanUp;
};
