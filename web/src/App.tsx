import {Component, type ComponentChildren} from 'preact';
import {useEffect, useLayoutEffect, useRef, useState} from 'preact/hooks';
import type {PageInfo, Source} from './data/Source';
import {FilesView} from './files/FilesView';
import {shortText} from './model/Values';
import {Overview, Time} from './overview/Overview';
import {RawView} from './raw/RawView';
import {ChangesView} from './views/ChangesView';
import {DocumentChoice} from './views/DocumentChoice';
import {SectionsView} from './views/SectionsView';

/** What the address of the page asks for. */
interface Route {
  view: string;
  rest: string;
}

const titles: Record<string, string> = {
  overview: 'Overview',
  sections: 'Sections',
  changes: 'Changes',
  files: 'Files',
  raw: 'Raw',
};

function routeOf(hash: string, views: string[]): Route {
  const [, view = '', rest = ''] = /^#([^/]*)\/?([^]*)$/.exec(hash) ?? [];
  return views.includes(view) ? {view, rest: decoded(rest)} : {view: views[0], rest: ''};
}

function decoded(text: string): string {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

function viewsOf({current, documents}: PageInfo): string[] {
  const files = current.files !== null || documents.some(({kind}) => kind === 'files');
  const filesView = files ? ['files'] : [];
  return current.machine === null
    ? [...filesView, 'changes', 'raw', 'overview']
    : ['overview', 'sections', 'changes', ...filesView, 'raw'];
}

/** The whole page: the navigation, and the view that its address asks for. */
export function App({source}: {source: Source}) {
  const {page} = source;
  const views = viewsOf(page);
  const [route, setRoute] = useState(() => routeOf(location.hash, views));
  const heading = useRef<HTMLHeadingElement>(null);
  const former = useRef(route.view);
  // Before the page is drawn, so that no change of the address is missed.
  useLayoutEffect(() => {
    const change = (): void => setRoute(routeOf(location.hash, views));
    addEventListener('hashchange', change);
    return () => removeEventListener('hashchange', change);
  }, []);
  useLayoutEffect(() => {
    if (former.current !== route.view && route.view !== 'raw') heading.current?.focus();
    former.current = route.view;
  }, [route]);
  return (
    <>
      <header>
        <p class="machine">
          {shortText(page.machine.name || page.machine.guid)}
          {page.redacted && <small> (without personal data)</small>}
        </p>
        <nav aria-label="Views">
          {views.map((view) => (
            <a href={`#${view}`} aria-current={view === route.view ? 'page' : undefined}>
              {titles[view]}
            </a>
          ))}
        </nav>
      </header>
      <Notes notes={page.notes ?? []} />
      <div class="view" data-view={route.view}>
        <h1 ref={heading} tabIndex={-1}>
          {titles[route.view]}
        </h1>
        <Failure key={`${route.view}/${route.view === 'raw' ? '' : route.rest}`}>
          <View source={source} route={route} />
        </Failure>
      </div>
      <footer>
        {page.generator}, <Time at={Date.parse(page.made)} />
      </footer>
    </>
  );
}

function View({source, route: {view, rest}}: {source: Source; route: Route}) {
  const {current, documents} = source.page;
  switch (view) {
    case 'sections':
      return <SectionsView source={source} index={current.machine!} section={rest} />;
    case 'changes':
      return <ChangesView page={source.page} />;
    case 'files':
      return <Files source={source} asked={rest} />;
    case 'raw': {
      const [number, ...keys] = rest.split('/');
      const index =
        documents[Number(number)] && number !== ''
          ? Number(number)
          : (current.machine ?? current.files ?? 0);
      return (
        <RawView
          key={index}
          source={source}
          index={index}
          place={keys.length ? '/' + keys.join('/') : ''}
        />
      );
    }
    default:
      return <Overview source={source} index={current.machine} />;
  }
}

function Files({source, asked}: {source: Source; asked: string}) {
  const {documents, current} = source.page;
  const choices = documents
    .map((_, index) => index)
    .filter((index) => documents[index].kind === 'files');
  const index =
    choices.includes(Number(asked)) && asked !== '' ? Number(asked) : (current.files ?? choices[0]);
  return (
    <>
      {choices.length > 1 && (
        <DocumentChoice documents={documents} choices={choices} index={index} view="files" />
      )}
      <Loaded key={index} name={documents[index].name}>
        <FilesView source={source} index={index} />
      </Loaded>
    </>
  );
}

/** Shows what is being read before it is: the browser cannot draw while it parses a large document. */
function Loaded({name, children}: {name: string; children: ComponentChildren}) {
  const [drawn, setDrawn] = useState(false);
  useEffect(() => {
    const frame = requestAnimationFrame(() => setTimeout(() => setDrawn(true)));
    return () => cancelAnimationFrame(frame);
  }, []);
  return drawn ? <>{children}</> : <p role="status">Reading {shortText(name)}…</p>;
}

const mostNotes = 20;

function Notes({notes}: {notes: string[]}) {
  if (notes.length === 0) return null;
  return (
    <ul class="notes" aria-label="Notes">
      {notes.slice(0, mostNotes).map((note) => (
        <li>{shortText(note)}</li>
      ))}
      {notes.length > mostNotes && <li>{notes.length - mostNotes} more notes.</li>}
    </ul>
  );
}

/** A document that cannot be shown leaves one line, and the rest of the page. */
class Failure extends Component<{children: ComponentChildren}, {message?: string}> {
  state: {message?: string} = {};
  componentDidCatch(error: Error): void {
    this.setState({message: error.message});
  }
  render() {
    const {message} = this.state;
    return message === undefined ? (
      this.props.children
    ) : (
      <p class="failure" role="alert">
        {shortText(message)}
      </p>
    );
  }
}
