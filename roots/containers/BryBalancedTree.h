// A balanced search tree of the caller's own entries.
#pragma once

#include <roots/Export.h>

// An entry of a BryBalancedTree: derive from it, give the derived class a key and a comparison, make each entry with
// new. The links lie in the entry itself, so a tree needs no memory of its own. Entries cannot be copied: two would
// own the same subtrees.
class KELROOTS_API BryBalancedTreeEntry {
public:
    enum eError : int {
        eOk = 0,
        eAlreadyInTree = 1,  // an entry that compares equal is in the tree; nothing was linked
        eNoEntry = 2,        // the entry is null
        eNotFound = 4,       // no entry compares equal
    };

    BryBalancedTreeEntry() = default;
    BryBalancedTreeEntry(const BryBalancedTreeEntry&) = delete;
    BryBalancedTreeEntry& operator=(const BryBalancedTreeEntry&) = delete;

    // Destroys the right subtree, then the left one. Whoever destroys an entry that is in a tree destroys everything
    // below it and leaves the tree with a dangling link: leave that to the tree.
    virtual ~BryBalancedTreeEntry();

    // Where other belongs: -1 before this entry, +1 behind it, 0 if both have the same key. The tree calls this on its
    // own entries, with the entry to be inserted, found or removed as other. Any other answer ends the way down there:
    // search finds nothing, remove answers eNotFound, and insert answers eOk though the entry is not linked.
    // What it throws passes through insert, search and remove, which have changed nothing then.
    virtual int compare(const BryBalancedTreeEntry& other) const = 0;

private:
    friend class BryBalancedTree;

    enum eWeight : int { eLeftHeavy = 0, eBalanced = 1, eRightHeavy = 2 };  // which subtree is one level higher

    // A slot is the pointer that holds a subtree: the tree's root or a link of an entry. grew and shrank tell, when set
    // to 1, that the subtree in the slot is one level higher or lower than before; 0, that the levels above need no
    // change.
    const BryBalancedTreeEntry* search(const BryBalancedTreeEntry& probe) const;
    static eError insert(BryBalancedTreeEntry*& root, BryBalancedTreeEntry* entry);

    // Take out the entry that compares equal (null if there is none), the one in slot, or the last one of the subtree.
    static BryBalancedTreeEntry* remove(BryBalancedTreeEntry*& slot, const BryBalancedTreeEntry& probe, int& shrank);
    static BryBalancedTreeEntry* unlink(BryBalancedTreeEntry*& slot, int& shrank);
    static BryBalancedTreeEntry* inorderPredecessor(BryBalancedTreeEntry*& slot, int& shrank);

    // Restore the balance of the entry in slot after its left or right subtree has grown or shrunk by one level.
    static void checkLeftInsert(BryBalancedTreeEntry*& slot, int& grew);
    static void checkRightInsert(BryBalancedTreeEntry*& slot, int& grew);
    static void checkLeftRemove(BryBalancedTreeEntry*& slot, int& shrank);
    static void checkRightRemove(BryBalancedTreeEntry*& slot, int& shrank);

    static void rotateLeft(BryBalancedTreeEntry*& slot);
    static void rotateRight(BryBalancedTreeEntry*& slot);
    static void rotateTwiceLeft(BryBalancedTreeEntry*& slot);
    static void rotateTwiceRight(BryBalancedTreeEntry*& slot);
    void checkAndCorrectBalanceStatus();
    void setWeightStatusToChilds(eWeight left, eWeight right);

    eWeight m_weight = eBalanced;
    BryBalancedTreeEntry* m_pLeft = nullptr;
    BryBalancedTreeEntry* m_pRight = nullptr;
};

// An AVL tree: of n entries it is never more than 1.45 log2(n + 2) levels high, and insert, search and remove take one
// comparison a level. It owns the entries linked into it and destroys them with delete. It cannot be copied.
//
// A key must not change while its entry is in a tree. Not for several threads at once.
class KELROOTS_API BryBalancedTree {
public:
    BryBalancedTree() = default;
    BryBalancedTree(const BryBalancedTree&) = delete;
    BryBalancedTree& operator=(const BryBalancedTree&) = delete;

    // Destroys every entry.
    virtual ~BryBalancedTree();

    // Links a new entry, which is in no tree. With eOk the tree owns it. With eAlreadyInTree and eNoEntry nothing
    // changed and it stays the caller's.
    // eOk alone does not tell that the entry was linked: one that compare gave an answer other than -1, 0 and +1 for
    // was not, and stays the caller's as well. Whoever has such a comparison asks search(*entry) == entry.
    BryBalancedTreeEntry::eError insert(BryBalancedTreeEntry* entry);

    // The entry that compares equal to probe, or null. It stays the tree's. The probe is any entry with the key wanted
    // and need not be in the tree.
    const BryBalancedTreeEntry* search(const BryBalancedTreeEntry& probe) const;

    // Takes the entry that compares equal to probe out of the tree and destroys it; the others stay, in balance.
    // eNotFound if there is none. The probe may be that entry itself.
    BryBalancedTreeEntry::eError remove(const BryBalancedTreeEntry& probe);

    // Destroys every entry; the tree is empty then and can be used again. Destructors of entries that ask the tree find
    // it empty; they must not insert.
    void reset();

private:
    BryBalancedTreeEntry* m_pRoot = nullptr;
};
