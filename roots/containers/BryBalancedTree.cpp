#include <roots/containers/BryBalancedTree.h>

using Entry = BryBalancedTreeEntry;

// ---- the entries ---------------------------------------------------------------------------------

// As deep as the tree is high.
BryBalancedTreeEntry::~BryBalancedTreeEntry() {
    delete m_pRight;
    delete m_pLeft;
    m_pLeft = m_pRight = nullptr;
}

const Entry* BryBalancedTreeEntry::search(const Entry& probe) const {
    const Entry* entry = this;
    while (entry != nullptr) {
        const int where = entry->compare(probe);
        if (where == -1)
            entry = entry->m_pLeft;
        else if (where == 1)
            entry = entry->m_pRight;
        else
            return where == 0 ? entry : nullptr;
    }
    return nullptr;
}

// ---- insertion -----------------------------------------------------------------------------------

Entry::eError BryBalancedTreeEntry::insert(Entry*& root, Entry* entry) {
    constexpr int kMostLevels = 96;  // of more entries than memory can hold
    Entry** way[kMostLevels];        // the slots from the root down
    int level = 0;
    Entry** slot = &root;
    while (Entry* const at = *slot) {
        way[level++] = slot;
        const int where = at->compare(*entry);
        if (where == 0) return eAlreadyInTree;
        if (where != -1 && where != 1) return eOk;
        slot = where < 0 ? &at->m_pLeft : &at->m_pRight;
    }
    *slot = entry;
    for (int grew = 1; grew && level > 0;) {
        Entry** const above = way[--level];
        if (slot == &(*above)->m_pLeft)
            checkLeftInsert(*above, grew);
        else
            checkRightInsert(*above, grew);
        slot = above;
    }
    return eOk;
}

void BryBalancedTreeEntry::checkLeftInsert(Entry*& slot, int& grew) {
    switch (slot->m_weight) {
        case eRightHeavy:
            slot->m_weight = eBalanced;
            grew = 0;
            break;
        case eBalanced: slot->m_weight = eLeftHeavy; break;
        case eLeftHeavy:
            if (slot->m_pLeft->m_weight == eLeftHeavy) {
                rotateRight(slot);
                slot->m_weight = slot->m_pRight->m_weight = eBalanced;
            } else {
                rotateTwiceRight(slot);
            }
            grew = 0;
            break;
    }
}

void BryBalancedTreeEntry::checkRightInsert(Entry*& slot, int& grew) {
    switch (slot->m_weight) {
        case eLeftHeavy:
            slot->m_weight = eBalanced;
            grew = 0;
            break;
        case eBalanced: slot->m_weight = eRightHeavy; break;
        case eRightHeavy:
            if (slot->m_pRight->m_weight == eRightHeavy) {
                rotateLeft(slot);
                slot->m_weight = slot->m_pLeft->m_weight = eBalanced;
            } else {
                rotateTwiceLeft(slot);
            }
            grew = 0;
            break;
    }
}

// ---- removal -------------------------------------------------------------------------------------

Entry* BryBalancedTreeEntry::remove(Entry*& slot, const Entry& probe, int& shrank) {
    if (slot == nullptr) return nullptr;
    switch (slot->compare(probe)) {
        case -1: {
            Entry* const removed = remove(slot->m_pLeft, probe, shrank);
            if (shrank) checkLeftRemove(slot, shrank);
            return removed;
        }
        case +1: {
            Entry* const removed = remove(slot->m_pRight, probe, shrank);
            if (shrank) checkRightRemove(slot, shrank);
            return removed;
        }
        case 0: return unlink(slot, shrank);
        default: return nullptr;
    }
}

// The place goes to the only child, or to the last entry of the left subtree.
Entry* BryBalancedTreeEntry::unlink(Entry*& slot, int& shrank) {
    Entry* const removed = slot;
    if (removed->m_pLeft == nullptr || removed->m_pRight == nullptr) {
        slot = removed->m_pLeft ? removed->m_pLeft : removed->m_pRight;
        shrank = 1;
    } else {
        slot = inorderPredecessor(removed->m_pLeft, shrank);
        slot->m_weight = removed->m_weight;
        slot->m_pLeft = removed->m_pLeft;
        slot->m_pRight = removed->m_pRight;
        if (shrank) checkLeftRemove(slot, shrank);
    }
    removed->m_pLeft = removed->m_pRight = nullptr;
    return removed;
}

Entry* BryBalancedTreeEntry::inorderPredecessor(Entry*& slot, int& shrank) {
    Entry* const last = slot;
    if (last->m_pRight == nullptr) {
        slot = last->m_pLeft;
        shrank = 1;
        return last;
    }
    Entry* const predecessor = inorderPredecessor(last->m_pRight, shrank);
    if (shrank) checkRightRemove(slot, shrank);
    return predecessor;
}

void BryBalancedTreeEntry::checkLeftRemove(Entry*& slot, int& shrank) {
    switch (slot->m_weight) {
        case eLeftHeavy: slot->m_weight = eBalanced; break;
        case eBalanced:
            slot->m_weight = eRightHeavy;
            shrank = 0;
            break;
        case eRightHeavy:
            if (slot->m_pRight->m_weight == eLeftHeavy) {
                rotateTwiceLeft(slot);
            } else {
                // A balanced right subtree, which no insertion meets, keeps the height as it was.
                const bool keepsHeight = slot->m_pRight->m_weight == eBalanced;
                rotateLeft(slot);
                slot->m_weight = keepsHeight ? eLeftHeavy : eBalanced;
                slot->m_pLeft->m_weight = keepsHeight ? eRightHeavy : eBalanced;
                shrank = !keepsHeight;
            }
            break;
    }
}

void BryBalancedTreeEntry::checkRightRemove(Entry*& slot, int& shrank) {
    switch (slot->m_weight) {
        case eRightHeavy: slot->m_weight = eBalanced; break;
        case eBalanced:
            slot->m_weight = eLeftHeavy;
            shrank = 0;
            break;
        case eLeftHeavy:
            if (slot->m_pLeft->m_weight == eRightHeavy) {
                rotateTwiceRight(slot);
            } else {
                const bool keepsHeight = slot->m_pLeft->m_weight == eBalanced;
                rotateRight(slot);
                slot->m_weight = keepsHeight ? eRightHeavy : eBalanced;
                slot->m_pRight->m_weight = keepsHeight ? eLeftHeavy : eBalanced;
                shrank = !keepsHeight;
            }
            break;
    }
}

// ---- rotations -----------------------------------------------------------------------------------

// Leave the weights alone.
void BryBalancedTreeEntry::rotateLeft(Entry*& slot) {
    Entry* const lower = slot;
    slot = lower->m_pRight;
    lower->m_pRight = slot->m_pLeft;
    slot->m_pLeft = lower;
}

void BryBalancedTreeEntry::rotateRight(Entry*& slot) {
    Entry* const lower = slot;
    slot = lower->m_pLeft;
    lower->m_pLeft = slot->m_pRight;
    slot->m_pRight = lower;
}

// The left (right) child of the right (left) child comes up, with the weights that follow.
void BryBalancedTreeEntry::rotateTwiceLeft(Entry*& slot) {
    rotateRight(slot->m_pRight);
    rotateLeft(slot);
    slot->checkAndCorrectBalanceStatus();
}

void BryBalancedTreeEntry::rotateTwiceRight(Entry*& slot) {
    rotateLeft(slot->m_pLeft);
    rotateRight(slot);
    slot->checkAndCorrectBalanceStatus();
}

// This entry has come up two levels: which of its children took over the shorter of its former subtrees, its weight
// still tells.
void BryBalancedTreeEntry::checkAndCorrectBalanceStatus() {
    switch (m_weight) {
        case eLeftHeavy: setWeightStatusToChilds(eBalanced, eRightHeavy); break;
        case eBalanced: setWeightStatusToChilds(eBalanced, eBalanced); break;
        case eRightHeavy: setWeightStatusToChilds(eLeftHeavy, eBalanced); break;
    }
    m_weight = eBalanced;
}

void BryBalancedTreeEntry::setWeightStatusToChilds(eWeight left, eWeight right) {
    m_pLeft->m_weight = left;
    m_pRight->m_weight = right;
}

// ---- the tree ------------------------------------------------------------------------------------

BryBalancedTree::~BryBalancedTree() { reset(); }

Entry::eError BryBalancedTree::insert(Entry* entry) {
    if (entry == nullptr) return Entry::eNoEntry;
    return Entry::insert(m_pRoot, entry);
}

const Entry* BryBalancedTree::search(const Entry& probe) const { return m_pRoot ? m_pRoot->search(probe) : nullptr; }

Entry::eError BryBalancedTree::remove(const Entry& probe) {
    int shrank = 0;
    Entry* const removed = Entry::remove(m_pRoot, probe, shrank);
    delete removed;
    return removed ? Entry::eOk : Entry::eNotFound;
}

// The tree is empty before the entries go: their destructors may ask it.
void BryBalancedTree::reset() {
    Entry* const root = m_pRoot;
    m_pRoot = nullptr;
    delete root;
}
