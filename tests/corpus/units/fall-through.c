//// fault
int Cost(int kind) {
    int cost = 0;
    switch (kind) {
    case 1:
        cost = 10;
    case 2: // HERE
        cost += 20;
        break;
    default:
        cost = 1;
    }
    return cost;
}
//// right
int Cost(int kind) {
    int cost = 0;
    switch (kind) {
    case 1:
        cost = 10;
        /* fall through */
    case 2:
        cost += 20;
        break;
    default:
        cost = 1;
    }
    return cost;
}
//// fault
void Put(char letter);
void Escape(char letter) {
    switch (letter) {
    case '\n':
        Put('\\');
        Put('n');
        break;
    case '"':
        Put('\\');
    default: // HERE
        Put(letter);
    }
}
//// right
void Put(char letter);
void Escape(char letter) {
    switch (letter) {
    case '\n':
    case '\r':
        Put('\\');
        Put('n');
        break;
    default:
        Put(letter);
    }
}
//// fault
int State(int state, int event) {
    switch (state) {
    case 0:
        if (event == 1) {
            state = 1;
        }
    case 1: // HERE
        if (event == 2) {
            state = 2;
        }
        break;
    }
    return state;
}
//// right
int State(int state, int event) {
    switch (state) {
    case 0:
        if (event == 1) {
            state = 1;
        }
        break;
    case 1:
        if (event == 2) {
            state = 2;
        }
        break;
    }
    return state;
}
